#include "devices/rules.h"
#include "devices/value_words.h"

namespace pm::kit::devices {

namespace {

constexpr std::string_view default_destination = "\\media\\default_destination";
constexpr std::array<std::string_view, 4> verbs{"collate", "cut", "fold", "staple"}; // by Finishing

const NamedList<FinishingStep>& steps_of(const MediaDestination& destination, Finishing kind) {
    return destination.steps[static_cast<std::size_t>(kind)];
}

struct Output {
    const MediaDestination* destination = nullptr;
    std::string by_default; // ", the device's default," if the configuration names none
};

Output output_of(Checker& check, const Setting& setting) {
    if (!setting.key.empty()) return {check.device.destinations.find(setting.key), {}};
    const Setting* chosen = check.chosen("destination", default_destination);
    if (chosen == nullptr) return {};
    return {check.device.destinations.find(chosen->as_name()), by_default(*chosen)};
}

// Of a destination of its own that isn't there nothing speaks.
void answer_without_destination(Checker& check, Setting& setting) {
    if (check.device.destinations.empty()) {
        check.silent(setting, check.device.path("\\media\\destination"), "media destinations");
    } else if (setting.key.empty()) {
        check.without_choice(setting, "destination", default_destination, "destination");
    }
}

// What asks for nothing of its kind is possible where there is nothing of it.
bool asks_for_none(const Device& device, Finishing kind, std::string_view name) {
    return std::ranges::any_of(device.destinations, [&](const MediaDestination& destination) {
        const FinishingStep* step = steps_of(destination, kind).find(name);
        return step != nullptr && step->is_none;
    });
}

// What the destination itself offers, then the destinations that `does` holds for.
template<class Does>
std::vector<Offer> instead(Checker& check, const MediaDestination& destination, Finishing kind,
                           std::string_view name, Does does) {
    std::vector<Offer> offers = nearest(steps_of(destination, kind), name);
    for (const MediaDestination& other : check.device.destinations) {
        if (&other != &destination && does(other)) offers.push_back(offer_of(other));
    }
    return offers;
}

void check_step(Checker& check, Setting& setting, Finishing kind) {
    const auto [destination, by_default] = output_of(check, setting);
    if (destination == nullptr) return answer_without_destination(check, setting);
    const std::string list =
        destination->path + '\\' + std::string(finishing_names[static_cast<std::size_t>(kind)]);
    const std::string name = setting.as_name();
    const auto& steps = steps_of(*destination, kind);
    if (const FinishingStep* step = steps.find(name)) return check.pass(setting, step->path);
    if (steps.empty() && asks_for_none(check.device, kind, name)) return check.pass(setting, list);
    check.fail(setting,
               {.description_path = list,
                .offers = instead(check, *destination, kind, name,
                                  [&](const MediaDestination& other) {
                                      return steps_of(other, kind).find(name) != nullptr;
                                  }),
                .message = "The destination " + called(*destination) + by_default + " doesn't " +
                           std::string(verbs[static_cast<std::size_t>(kind)]) + " by " + quoted(name) + '.'});
}

void check_steps(Checker& check, Finishing kind) {
    for (Setting& setting : check.settings.all(finishing_names[static_cast<std::size_t>(kind)])) {
        check_step(check, setting, kind);
    }
}

// Whether a destination can collate at all, or leave it.
bool collates(const MediaDestination& destination, bool wanted) {
    const auto& steps = steps_of(destination, Finishing::collating);
    if (steps.empty()) return !wanted;
    return std::ranges::any_of(steps, [&](const FinishingStep& step) { return step.is_none != wanted; });
}

void check_collate(Checker& check, Setting& setting) {
    const auto [destination, by_default] = output_of(check, setting);
    if (destination == nullptr) return answer_without_destination(check, setting);
    const std::string list = destination->path + "\\collating";
    if (!setting.number) return check.unreadable(setting, "truth value");
    const bool wanted = *setting.number != 0;
    if (collates(*destination, wanted)) return check.pass(setting, list);
    check.fail(setting,
               {.description_path = list,
                .offers = instead(check, *destination, Finishing::collating, {},
                                  [&](const MediaDestination& other) { return collates(other, wanted); }),
                .message = "The destination " + called(*destination) + by_default +
                           (wanted ? " doesn't collate." : " always collates.")});
}

} // namespace

void check_collating(Checker& check) {
    check_steps(check, Finishing::collating);
    for (Setting& setting : check.settings.all("collate")) {
        check_collate(check, setting);
    }
}

void check_cutting(Checker& check) {
    check_steps(check, Finishing::cutting);
}

void check_folding(Checker& check) {
    check_steps(check, Finishing::folding);
}

void check_stapling(Checker& check) {
    check_steps(check, Finishing::stapling);
}

} // namespace pm::kit::devices
