#include "devices/number_words.h"
#include "devices/rules.h"
#include "devices/value_words.h"

namespace pm::kit::devices {

namespace {

constexpr std::string_view default_size = "\\media\\default_size";
constexpr std::string_view default_source = "\\media\\default_source";

// A setting that names one of the items at `list`; `what` is "media size".
template<class T>
void check_name(Checker& check, Setting& setting, const NamedList<T>& items, std::string_view list,
                std::string_view what) {
    const std::string path = check.device.path(list);
    if (items.empty()) return check.silent(setting, path, std::string(what) + 's');
    if (const T* item = items.find(setting.as_name())) return check.pass(setting, item->path);
    check.fail(setting,
               {.description_path = path,
                .offers = nearest(items, setting.as_name()),
                .message = "The device has no " + std::string(what) + ' ' + quoted(setting.as_name()) + '.'});
}

const MediaSource* chosen_source(Checker& check) {
    const Setting* source = check.chosen("source", default_source);
    return source != nullptr ? check.device.sources.find(source->as_name()) : nullptr;
}

// The source of a setting that has it as its key, or the chosen one.
const MediaSource* source_of(Checker& check, const Setting& setting) {
    return setting.key.empty() ? chosen_source(check) : check.device.sources.find(setting.key);
}

std::string source_called(Checker& check, const Setting& setting, const MediaSource& source) {
    const bool is_default = setting.key.empty() && check.settings.find("source", {}) == nullptr;
    return called(source) + by_default(is_default);
}

Setting* loaded_in(Checker& check, const MediaSource& source) {
    if (Setting* loaded = check.settings.find("loaded", source.name)) return loaded;
    const MediaSource* chosen = chosen_source(check);
    return chosen == &source ? check.settings.find("loaded", {}) : nullptr;
}

const SourceEntry* entry_in(Checker& check, const MediaSource& source) {
    const Setting* loaded = loaded_in(check, source);
    return source.entries.find(loaded != nullptr ? loaded->as_name() : source.default_entry);
}

// What the sources can be loaded with to take a size, `first` in front.
std::vector<Offer> sources_for(const Device& device, const MediaSource& first, std::string_view size) {
    std::vector<Offer> own;
    std::vector<Offer> others;
    for (const MediaSource& source : device.sources) {
        for (const SourceEntry& entry : source.entries) {
            if (entry.sizes.find(size) == nullptr) continue;
            (&source == &first ? own : others)
                .push_back({source.name + '\\' + entry.name, source.text + ": " + entry.text, entry.path});
        }
    }
    own.insert(own.end(), others.begin(), others.end());
    return own;
}

// Of a source of its own that isn't there another rule tells.
void answer_without_source(Checker& check, Setting& setting) {
    if (!setting.key.empty()) return Checker::leave(setting);
    if (!check.device.sources.empty()) {
        return check.without_choice(setting, "source", default_source, "media source");
    }
    check.silent(setting, check.device.path("\\media\\source"), "media sources");
}

void check_loaded_entry(Checker& check, Setting& setting) {
    const MediaSource* source = source_of(check, setting);
    if (source == nullptr) return answer_without_source(check, setting);
    const std::string list = source->path + "\\entry";
    if (source->entries.empty()) return check.silent(setting, list, "entries of this source");
    if (const auto* entry = source->entries.find(setting.as_name())) return check.pass(setting, entry->path);
    check.fail(setting, {.description_path = list,
                         .offers = nearest(source->entries, setting.as_name()),
                         .message = "The source " + source_called(check, setting, *source) +
                                    " can't be loaded with " + quoted(setting.as_name()) + '.'});
}

void check_feed(Checker& check, Setting& setting) {
    const MediaSource* source = source_of(check, setting);
    if (source == nullptr) return answer_without_source(check, setting);
    const std::string path = source->path + "\\feed";
    if (!source->feed) return check.silent(setting, path, "feed of this source");
    const auto asked = integer_of(setting.number);
    if (!asked) return check.unreadable(setting, "integer");
    if (*asked == *source->feed) return check.pass(setting, path);
    const std::string feed = std::to_string(*source->feed);
    check.fail(setting,
               {.description_path = path,
                .described = feed,
                .offers = {{feed, std::string(feed_word(*source->feed)), path}},
                .message = "The source " + source_called(check, setting, *source) + " has another feed.",
                .text = std::string(feed_word(*asked))});
}

void check_loaded_width(Checker& check, Setting& setting) {
    const MediaSource* source = source_of(check, setting);
    if (source == nullptr) return answer_without_source(check, setting);
    const SourceEntry* entry = entry_in(check, *source);
    if (entry == nullptr && loaded_in(check, *source) == nullptr) {
        return check.silent(setting, source->path + "\\default_entry", "default entry of this source");
    }
    if (entry == nullptr) return Checker::leave(setting);
    const std::string path = entry->path + "\\width";
    if (!entry->width) return check.silent(setting, path, "width of this entry");
    if (!setting.number) return check.unreadable(setting, "number");
    if (is_same_length(*setting.number, *entry->width)) return check.pass(setting, path);
    check.fail(setting, {.description_path = path,
                         .described = number_text(*entry->width),
                         .offers = {{setting.in_unit(*entry->width), entry->text, path}},
                         .message = called(*entry) + by_default(loaded_in(check, *source) == nullptr) +
                                    " is " + setting.said(*entry->width) + " wide."});
}

// The size by default of what a source can be loaded with.
void check_entry_size(Checker& check, Setting& setting) {
    const std::size_t cut = setting.key.find('\\');
    const MediaSource* source = check.device.sources.find(setting.key.substr(0, cut));
    const SourceEntry* entry = source != nullptr && cut != std::string::npos
                                   ? source->entries.find(setting.key.substr(cut + 1))
                                   : nullptr;
    if (entry == nullptr) return; // nothing speaks of it
    if (const Named* size = entry->sizes.find(setting.as_name())) return check.pass(setting, size->path);
    check.fail(setting, {.description_path = entry->path + "\\size_names",
                         .offers = nearest(entry->sizes, setting.as_name()),
                         .message = called(*entry) + " doesn't take its own default size " +
                                    quoted(setting.as_name()) + '.'});
}

} // namespace

const MediaSize* chosen_size(Checker& check) {
    const Setting* size = check.chosen("size", default_size);
    return size != nullptr ? check.device.sizes.find(size->as_name()) : nullptr;
}

void check_media_size(Checker& check) {
    for (const std::string_view name : {"size", "size_entry"}) {
        for (Setting& setting : check.settings.all(name)) {
            check_name(check, setting, check.device.sizes, "\\media\\size", "media size");
        }
    }
}

void check_media_source(Checker& check) {
    for (Setting& setting : check.settings.all("source")) {
        check_name(check, setting, check.device.sources, "\\media\\source", "media source");
    }
    // What is told of a source that isn't there is told of once.
    std::vector<std::string> missing;
    for (const std::string_view name : {"loaded", "feed", "loaded_width"}) {
        for (Setting& setting : check.settings.all(name)) {
            if (setting.key.empty() || check.device.sources.find(setting.key) != nullptr) continue;
            if (std::ranges::find(missing, setting.key) != missing.end()) continue;
            missing.push_back(setting.key);
            check.fail(setting, {.description_path = check.device.path("\\media\\source"),
                                 .offers = nearest(check.device.sources, setting.key),
                                 .message = "The device has no media source " + quoted(setting.key) + '.'});
        }
    }
}

void check_media_loaded(Checker& check) {
    for (Setting& setting : check.settings.all("loaded")) {
        check_loaded_entry(check, setting);
    }
    for (Setting& setting : check.settings.all("feed")) {
        check_feed(check, setting);
    }
    for (Setting& setting : check.settings.all("loaded_width")) {
        check_loaded_width(check, setting);
    }
}

void check_size_in_source(Checker& check) {
    for (Setting& setting : check.settings.all("entry_size")) {
        check_entry_size(check, setting);
    }
    Setting* size = check.chosen("size", default_size);
    Setting* source_setting = check.chosen("source", default_source);
    const MediaSource* source = chosen_source(check);
    if (size == nullptr || source == nullptr || check.device.sizes.find(size->as_name()) == nullptr) return;
    if (size->is_default() && source_setting->is_default()) return;
    Setting& asked = size->is_default() ? *source_setting : *size;
    if (source->entries.empty()) {
        return check.silent(asked, source->path + "\\entry", "entries of this source");
    }
    const Setting* loaded = loaded_in(check, *source);
    for (const SourceEntry& entry : source->entries) {
        if (loaded != nullptr && entry.name != loaded->as_name()) continue;
        if (const Named* found = entry.sizes.find(size->as_name())) return check.pass(asked, found->path);
    }
    const Named& media = *check.device.sizes.find(size->as_name());
    check.fail(
        asked,
        {.description_path = source->path + "\\entry",
         .offers = sources_for(check.device, *source, size->as_name()),
         .message = "The media size " + called(media) + by_default(*size) + " isn't one that the source " +
                    called(*source) + by_default(*source_setting) +
                    (loaded != nullptr ? " takes with " + quoted(loaded->text) + " loaded." : " takes."),
         .text = asked.name == "size" ? media.text : source->text});
}

void check_destination(Checker& check) {
    for (Setting& setting : check.settings.all("destination")) {
        check_name(check, setting, check.device.destinations, "\\media\\destination", "media destination");
    }
}

void check_media_type(Checker& check) {
    for (Setting& setting : check.settings.all("type")) {
        check_name(check, setting, check.device.types, "\\media\\type", "media type");
    }
}

void check_copies(Checker& check) {
    const std::string path = check.device.path("\\media\\max_number_of_copies");
    const auto most = check.device.number("\\media\\max_number_of_copies");
    for (Setting& setting : check.settings.all("copies")) {
        if (!most) {
            check.silent(setting, path, "maximum of copies");
        } else {
            check_count(check, setting, {1.0, most}, path, number_text(*most), "The number of copies");
        }
    }
}

void check_duplex(Checker& check) {
    constexpr std::string_view modes = "\\media\\duplexing_modes";
    for (Setting& setting : check.settings.all("duplex")) {
        check_bits(check, setting, modes, check.device.number(modes), "duplexing mode", duplexing_words);
    }
}

void check_selection(Checker& check) {
    constexpr std::string_view methods = "\\media\\selection_methods";
    for (Setting& setting : check.settings.all("selection_method")) {
        check_bits(check, setting, methods, check.device.number(methods), "selection method",
                   selection_words);
    }
}

} // namespace pm::kit::devices
