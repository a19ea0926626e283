#include "devices/number_words.h"
#include "devices/rules.h"
#include "devices/value_words.h"

namespace pm::kit::devices {

namespace {

constexpr std::string_view method_list = "\\io\\method";
constexpr std::string_view default_type = "\\io\\default_type";
constexpr std::string_view file_method = "2";

std::string method_called(std::string_view number) {
    const auto type = integer_of([&]() -> std::optional<double> {
        if (number.size() != 1 || number[0] < '0' || number[0] > '9') return std::nullopt;
        return number[0] - '0';
    }());
    const std::string_view word = type ? io_type_word(*type) : std::string_view();
    return word.empty() ? std::string(number) : std::string(number) + " (" + std::string(word) + ')';
}

std::vector<Offer> offered_methods(const Device& device) {
    std::vector<Offer> offers;
    for (const IoMethod& method : device.methods) {
        const auto called = method_called(method.name);
        const auto word =
            called.size() > method.name.size() ? called.substr(method.name.size() + 2) : std::string();
        offers.push_back({method.name, word.substr(0, word.size() - (word.empty() ? 0 : 1)), method.path});
    }
    return offers;
}

// The method that a setting is a parameter of, and whether it is the one in use.
struct Parameter {
    const IoMethod* method = nullptr;
    bool is_default = false;               // in use, and by default
    std::optional<Severity> severity = {}; // a warning where the method isn't in use

    [[nodiscard]] std::string called(Goes sentence = Goes::on) const {
        return method_called(method->name) + by_default(is_default, sentence);
    }
};

// Takes up the setting if there is no such method.
Parameter parameter_of(Checker& check, Setting& setting) {
    const Setting* type = check.chosen("io_type", default_type);
    const std::string chosen = type != nullptr ? type->text : std::string();
    const std::string number = setting.key.empty() ? chosen : setting.key;
    Parameter parameter{check.device.methods.find(number)};
    const bool is_idle = number != chosen && (setting.row == nullptr || !setting.row->is_default);
    if (is_idle) parameter.severity = Severity::warning;
    parameter.is_default = type != nullptr && type->is_default() && number == chosen;
    if (parameter.method != nullptr) return parameter;
    if (check.device.methods.empty() || number.empty()) {
        check.silent(setting, check.device.path(method_list), "methods of output");
    } else if (!is_idle && check.settings.has("io_type")) {
        Checker::leave(setting);
    } else {
        check.fail(setting, {.description_path = check.device.path(method_list),
                             .offers = offered_methods(check.device),
                             .message = "The device has no output by " + method_called(number) +
                                        by_default(parameter.is_default, Goes::no_further) + '.',
                             .severity = parameter.severity});
    }
    return parameter;
}

// Behind what is told of the method in use; nothing where the configuration chooses it.
std::string where_by_default(const Parameter& parameter) {
    return parameter.is_default ? " for output by " + parameter.called(Goes::no_further) : "";
}

void check_timeout(Checker& check, Setting& setting, Range IoMethod::*range, std::string_view name) {
    const Parameter parameter = parameter_of(check, setting);
    const IoMethod* method = parameter.method;
    if (method == nullptr) return;
    const std::string path = method->path + '\\';
    const std::size_t before = check.findings.size();
    check_range(check, setting, method->*range, path + "min_" + std::string(name),
                path + "max_" + std::string(name),
                name == "input_timeout" ? "The timeout of input" : "The timeout of output",
                (parameter.is_default ? "," : "") + where_by_default(parameter));
    if (check.findings.size() != before && parameter.severity) {
        check.findings.back().severity = *parameter.severity;
    }
}

void check_rate(Checker& check, Setting& setting) {
    const Parameter parameter = parameter_of(check, setting);
    const IoMethod* method = parameter.method;
    if (method == nullptr) return;
    const std::string list = method->path + "\\baudrates";
    if (method->baud_rates.empty()) return check.silent(setting, list, "baud rates of this method");
    if (!setting.number) return check.unreadable(setting, "number");
    const std::string rate = number_text(*setting.number);
    const auto found = std::ranges::find(method->baud_rates, rate, &Named::name);
    if (found != method->baud_rates.end()) return check.pass(setting, found->path);
    std::vector<Offer> offers;
    for (const Named& offered : method->baud_rates) {
        offers.push_back(offer_of(offered));
    }
    check.fail(setting, {.description_path = list,
                         .offers = std::move(offers),
                         .message = "Output by " + parameter.called() + " has no baud rate of " + rate + '.',
                         .severity = parameter.severity});
}

void check_protocol_name(Checker& check, Setting& setting) {
    const Parameter parameter = parameter_of(check, setting);
    const IoMethod* method = parameter.method;
    if (method == nullptr) return;
    const std::string list = method->path + "\\protocol";
    if (method->protocols.empty()) return check.silent(setting, list, "protocols of this method");
    if (const Protocol* protocol = method->protocols.find(setting.text)) {
        return check.pass(setting, protocol->path);
    }
    check.fail(setting, {.description_path = list,
                         .offers = nearest(method->protocols, setting.text),
                         .message = "Output by " + parameter.called() + " has no protocol " +
                                    quoted(setting.text) + '.',
                         .severity = parameter.severity});
}

// Data bits, stop bits and parity: one protocol has all that are told.
constexpr std::array<std::string_view, 3> frame_settings{"data_bits", "stop_bits", "parity"};
constexpr std::array<std::optional<int> Protocol::*, 3> frame_parts{&Protocol::data_bits,
                                                                    &Protocol::stop_bits, &Protocol::parity};

bool has_frame(Checker& check, const Protocol& protocol, std::string_view key) {
    for (std::size_t part = 0; part < frame_settings.size(); ++part) {
        const Setting* asked = check.settings.find(frame_settings[part], key);
        if (asked != nullptr && asked->number && protocol.*frame_parts[part] != integer_of(asked->number)) {
            return false;
        }
    }
    return true;
}

// Told of once, at the first part that can be read.
bool is_first_part(Checker& check, const Setting& setting) {
    for (const std::string_view name : frame_settings) {
        const Setting* part = check.settings.find(name, setting.key);
        if (part != nullptr && part->number) return part == &setting;
    }
    return false;
}

void check_frame(Checker& check, Setting& setting) {
    if (!setting.number) return check.unreadable(setting, "integer");
    if (!is_first_part(check, setting)) return Checker::leave(setting);
    const Parameter parameter = parameter_of(check, setting);
    const IoMethod* method = parameter.method;
    if (method == nullptr) return;
    const std::string list = method->path + "\\protocol";
    if (method->protocols.empty()) return check.silent(setting, list, "protocols of this method");
    for (const Protocol& protocol : method->protocols) {
        if (has_frame(check, protocol, setting.key)) return check.pass(setting, protocol.path);
    }
    check.fail(setting, {.description_path = list,
                         .offers = nearest(method->protocols, {}),
                         .message = "Output by " + parameter.called() +
                                    " has no protocol of these data bits, stop bits and parity.",
                         .severity = parameter.severity});
}

} // namespace

void check_method(Checker& check) {
    const std::string list = check.device.path(method_list);
    for (Setting& setting : check.settings.all("io_type")) {
        if (check.device.methods.empty()) {
            check.silent(setting, list, "methods of output");
        } else if (const IoMethod* method = check.device.methods.find(setting.text)) {
            check.pass(setting, method->path);
        } else {
            const auto type = integer_of(setting.number);
            check.fail(setting,
                       {.description_path = list,
                        .offers = offered_methods(check.device),
                        .message = "The device has no output by " + method_called(setting.text) + '.',
                        .text = std::string(type ? io_type_word(*type) : std::string_view())});
        }
    }
    for (Setting& setting : check.settings.all("plot_to_file")) {
        if (check.device.methods.empty()) {
            check.silent(setting, list, "methods of output");
        } else if (!setting.number) {
            check.unreadable(setting, "truth value");
        } else if (*setting.number == 0 || check.device.methods.find(file_method) != nullptr) {
            check.pass(setting, list);
        } else {
            check.fail(setting, {.description_path = list,
                                 .offers = offered_methods(check.device),
                                 .message = "The device has no output to a file."});
        }
    }
}

void check_timeouts(Checker& check) {
    for (Setting& setting : check.settings.all("output_timeout")) {
        check_timeout(check, setting, &IoMethod::output_timeout, "output_timeout");
    }
    for (Setting& setting : check.settings.all("input_timeout")) {
        check_timeout(check, setting, &IoMethod::input_timeout, "input_timeout");
    }
}

void check_baud_rate(Checker& check) {
    for (Setting& setting : check.settings.all("baud_rate")) {
        check_rate(check, setting);
    }
}

void check_protocol(Checker& check) {
    for (Setting& setting : check.settings.all("protocol")) {
        check_protocol_name(check, setting);
    }
    for (const std::string_view name : frame_settings) {
        for (Setting& setting : check.settings.all(name)) {
            check_frame(check, setting);
        }
    }
}

void check_handshake(Checker& check) {
    for (Setting& setting : check.settings.all("handshake")) {
        const Parameter parameter = parameter_of(check, setting);
        const IoMethod* method = parameter.method;
        if (method == nullptr) continue;
        const auto offered = method->handshakes;
        const std::size_t before = check.findings.size();
        check_bits(check, setting, "\\io\\method\\" + method->name + "\\handshakes",
                   offered ? std::optional<double>(*offered) : std::nullopt, "handshake", handshake_words,
                   where_by_default(parameter));
        if (check.findings.size() != before && parameter.severity) {
            check.findings.back().severity = *parameter.severity;
        }
    }
}

void check_extension(Checker& check) {
    constexpr std::string_view path = "\\io\\default_plot_file_extension";
    const std::string extension = check.device.text(path);
    for (Setting& setting : check.settings.all("file_extension")) {
        if (extension.empty()) {
            check.silent(setting, check.device.path(path), "extension of plot files");
        } else if (setting.text == extension) {
            check.pass(setting, check.device.path(path));
        } else {
            check.fail(setting, {.description_path = check.device.path(path),
                                 .described = extension,
                                 .offers = {{extension, {}, check.device.path(path)}},
                                 .message = "The device's plot files end in " + quoted(extension) + '.'});
        }
    }
}

void check_start_strings(Checker& check) {
    struct StartString {
        std::string_view setting;
        std::size_t flag;
        std::string_view what;
    };
    static constexpr std::array<StartString, 3> strings{{{"pre_init", 0, "before its initialisation"},
                                                         {"post_init", 1, "after its initialisation"},
                                                         {"termination", 2, "at the end"}}};
    const std::string path = check.device.path("\\init_term\\abilities");
    const std::string abilities = check.device.text("\\init_term\\abilities");
    for (const auto& [name, flag, what] : strings) {
        for (Setting& setting : check.settings.all(name)) {
            if (flag >= abilities.size()) {
                check.silent(setting, path, "start strings");
            } else if (abilities[flag] != '0' || setting.text.empty()) {
                check.pass(setting, path);
            } else {
                check.fail(setting, {.description_path = path,
                                     .described = abilities,
                                     .message = "The device takes no string " + std::string(what) + '.'});
            }
        }
    }
}

} // namespace pm::kit::devices
