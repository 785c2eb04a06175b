// SPDX-License-Identifier: MIT
#include "linux/NotificationSwitches.h"

#include "linux/AtomicFile.h"
#include "linux/DesktopEntry.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vorla {

namespace {

constexpr auto applicationName = "VorlaUsageMenuBar";
constexpr std::string_view plasmaGroup = "[Applications][com.vorla.UsageMenuBar]";
constexpr auto plasmaFileName = "/plasmanotifyrc";
constexpr std::size_t maximumPlasmaBytes = std::size_t{1} << 20U;

/// The header of a group or a key, without the marks that may follow it, such as "[$i]".
std::string_view withoutMarks(std::string_view name) {
    return withoutBlanks(name.substr(0, name.find("[$")));
}

bool isFalse(std::string_view value) {
    std::string lowered(value);
    std::ranges::transform(value, lowered.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    constexpr std::array<std::string_view, 4> spellings = {"false", "0", "off", "no"};
    return std::ranges::find(spellings, lowered) != spellings.end();
}

/// The list of applications that are muted, as far as it is about this one.
struct MutedApplications {
    bool listThisOne = false;
};

} // namespace

namespace bus {

template <>
struct Codec<MutedApplications> {
    static MutedApplications read(Message& message) {
        const auto contents = message.nextVariantContents();
        std::vector<Variant> names;
        if (contents == "av") {
            names = message.read<InVariant<std::vector<Variant>>>().value;
        } else {
            for (auto& name : message.read<InVariant<std::vector<std::string>>>().value) {
                names.emplace_back(std::move(name));
            }
        }
        return {std::ranges::find(names, Variant(std::string(applicationName))) != names.end()};
    }
};

} // namespace bus

NotificationDelivery plasmaDelivery(std::string_view settings) {
    bool inGroup = false;
    bool popups = true;
    bool history = true;
    while (!settings.empty()) {
        const auto whole = settings.substr(0, settings.find('\n'));
        settings.remove_prefix(std::min(whole.size() + 1, settings.size()));
        const auto line = withoutBlanks(whole);
        const auto equals = line.find('=');
        if (line.starts_with('[')) {
            inGroup = withoutMarks(line) == plasmaGroup;
        } else if (inGroup && equals != std::string_view::npos) {
            const auto key = withoutMarks(line.substr(0, equals));
            const bool isOn = !isFalse(withoutBlanks(line.substr(equals + 1)));
            popups = key == "ShowPopups" ? isOn : popups;
            history = key == "ShowInHistory" ? isOn : history;
        }
    }
    if (popups) {
        return NotificationDelivery::shown;
    }
    return history ? NotificationDelivery::quiet : NotificationDelivery::off;
}

NotificationSwitches::NotificationSwitches(
    bus::Bus& bus, MainLoop& loop, std::chrono::milliseconds callLimit,
    const NotificationSettingsPlaces& places)
    : plasmaFile_(places.configurationDirectory + plasmaFileName), calls_(bus, loop, callLimit),
      gnome_(loop, places) {}

void NotificationSwitches::look(NotificationDesktop desktop, Answer answer) {
    switch (desktop) {
    case NotificationDesktop::gnome:
        gnome_.look(answer);
        return;
    case NotificationDesktop::plasma:
        answer(plasmaDelivery(readFile(plasmaFile_, maximumPlasmaBytes).bytes));
        return;
    case NotificationDesktop::xfce:
        lookAtXfce(std::move(answer));
        return;
    case NotificationDesktop::other:
        answer(NotificationDelivery::shown);
        return;
    }
}

void NotificationSwitches::lookAtXfce(Answer answer) {
    calls_.call(
        {"org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetProperty"},
        [answer = std::move(answer)](const bus::Reply<MutedApplications>& reply) {
            const bool isMuted = reply.results && std::get<0>(*reply.results).listThisOne;
            answer(isMuted ? NotificationDelivery::quiet : NotificationDelivery::shown);
        },
        std::string("xfce4-notifyd"), std::string("/applications/muted_applications"));
}

} // namespace vorla
