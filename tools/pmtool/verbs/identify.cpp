#include "failure.h"
#include "formats.h"
#include "json.h"
#include "source.h"
#include "system.h"
#include "text.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>
#include <pm/kit/encoding.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct IdentifyOptions {
    std::vector<std::string> files;
    bool json = false;
};

// What the content tells beyond its kind; what isn't known is empty.
struct Details {
    std::string version = {};
    std::optional<bool> compressed = {};
    std::string tag = {};
    std::string text = {}; // what narrow text is in
    std::vector<kit::Section> sections = {};
    std::string damage = {};
};

std::string encoding_name(const Source& source) {
    const PM_Object::FileType type = source.content.type;
    if (type == PM_Object::FILE_DOC || type == PM_Object::FILE_PDT) return {};
    if (source.code_page != 0 || type == PM_Object::FILE_DPIA) return "UTF-8";
    switch (kit::text_encoding(source.content.tree)) {
    case kit::TextEncoding::ascii:
        return "ASCII";
    case kit::TextEncoding::mixed:
        return "mixed";
    default:
        return fmt::format("code page {}", pm_system_code_page());
    }
}

// A file, and what it holds where that can't be read twice.
struct Input {
    std::string file;
    std::optional<std::string> content;

    Identity identity() const {
        return content ? identify_content(file, *content, false) : identify(file, false);
    }
};

Details details_of(const Input& input) {
    try {
        SourceOptions options{input.file};
        options.keep_going = true;
        const Source source = read_source(options, input.content);
        Details details{.text = encoding_name(source), .sections = source.content.sections};
        if (source.content.version != 0) details.version = fmt::format("{}.0", source.content.version);
        if (source.content.type == PM_Object::FILE_PIA) {
            details.compressed = source.content.compressed;
            details.tag = source.content.tag;
        }
        if (!source.dropped.empty()) details.damage = source.dropped.front();
        return details;
    } catch (const Failure& e) {
        return {.damage = e.what()};
    }
}

std::string details_text(const Details& details) {
    std::vector<std::string> parts;
    if (!details.version.empty()) parts.push_back("version " + details.version);
    if (details.compressed) parts.emplace_back(*details.compressed ? "compressed" : "plain");
    if (!details.text.empty()) parts.push_back("text in " + details.text);
    if (!details.damage.empty()) parts.emplace_back("damaged");
    std::vector<std::string> names;
    for (const kit::Section& section : details.sections) {
        names.push_back(printable(section.name));
    }
    if (!names.empty()) parts.push_back(fmt::format("sections {}", fmt::join(names, ", ")));
    return fmt::format("{}", fmt::join(parts, ", "));
}

Json json_of(const Input& input, const Identity& identity) {
    const Details details = details_of(input);
    Json row = Json::object();
    row.text("file", input.file).text("format", identity.format->name).text("title", identity.format->title);
    row.text("evidence", identity.evidence);
    if (!details.version.empty()) row.text("version", details.version);
    if (details.compressed) row.truth("compressed", *details.compressed).text("tag", details.tag);
    if (!details.text.empty()) row.text("text", details.text);
    if (!details.damage.empty()) row.text("damage", details.damage);
    if (details.sections.empty()) return row;
    Json sections = Json::array();
    for (const kit::Section& section : details.sections) {
        sections.append(std::move(Json::object().text("name", section.name).text("info", section.info)));
    }
    row.member("sections", std::move(sections));
    return row;
}

void print(const Input& input, const Identity& identity) {
    fmt::print("{}: {} ({}): {}\n", kit::printable_text(input.file), identity.format->name,
               identity.format->title, identity.evidence);
    const std::string text = details_text(details_of(input));
    if (!text.empty()) fmt::print("  {}\n", text);
}

int identify_files(const IdentifyOptions& options) {
    int status = exit_ok;
    Json list = Json::array();
    for (const std::string& file : options.files) {
        try {
            const Input input{file, content_at_hand(file)};
            const Identity identity = input.identity();
            if (options.json) {
                list.append(json_of(input, identity));
            } else {
                print(input, identity);
            }
        } catch (const Failure& e) {
            std::fflush(stdout);
            complain(e.what());
            status = exit_trouble;
        }
    }
    if (options.json) fmt::print("{}", list.dump());
    return status;
}

constexpr Verb verb = {
    "identify", "look", "tell the formats of files from their content",
    R"(Tells the format of each file and by what it is known, then what its content says: version, compression, what its text is in, its sections or plotters.)",
    R"(pmtool identify *.pia
pmtool identify plotter.pia --json | jq -r '.[].format')"};

} // namespace

void add_identify(Commands& commands) {
    const auto options = std::make_shared<IdentifyOptions>();
    VerbLine line = commands.add(verb, [options] { return identify_files(*options); });
    line.arguments("FILE", options->files, "The files; \"-\" is standard input");
    line.flag("--json", options->json, "An array of objects");
}

} // namespace pmtool
