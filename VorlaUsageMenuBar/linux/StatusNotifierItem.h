// SPDX-License-Identifier: MIT
#pragma once

#include "linux/DbusMenu.h"
#include "linux/HostRecognition.h"
#include "linux/ItemIcon.h"

namespace vorla {

/// The item in the panel, as org.kde.StatusNotifierItem with a menu. Main thread.
///
/// It registers with whatever panel there is as soon as it has something to show, and again with
/// each panel that comes later. It has no click actions of its own, neither Activate nor any other:
/// panels that find one delay the menu or do not open it at all.
class StatusNotifierItem final : public StatusItem {
public:
    /// `iconFile` is the absolute path of the picture for panels that take no pixels, or empty.
    /// Throws std::system_error if the bus refuses the objects.
    StatusNotifierItem(bus::Bus& bus, MainLoop& loop, std::string iconFile);

    void setListener(Listener* listener) override { menu_.setListener(listener); }

    void show(const StatusMenu& menu) override;
    std::optional<std::string> takeActivationToken() override;

private:
    bus::Interface interface();
    void addUnusedProperties(bus::Interface& interface);
    void announceTitle();
    void adoptIconKind(IconKind kind);
    void announceIcon();
    std::string iconName() const;
    std::vector<Pixmap> drawnIcon() const;
    void registerItem();
    void keepActivationToken(const std::string& token);

    bus::Bus& bus_;
    MainLoop& loop_;
    std::string iconFile_;
    std::string title_;
    std::vector<std::int64_t> figures_;
    IconKind iconKind_ = IconKind::figures;
    /// Of what was announced last. The pixels themselves are drawn anew for each panel that reads
    /// them (docs/decisions/0009).
    std::uint64_t iconFingerprint_ = 0;
    /// Since the first show(): before, there is nothing that a panel could be told.
    bool isComplete_ = false;
    std::optional<std::string> activationToken_;
    std::unique_ptr<MainLoop::Source> activationTokenLimit_;
    DbusMenu menu_;
    bus::Slot object_;
    bus::Slot watcherChanges_;
    bus::Slot registration_;
    HostRecognition hostRecognition_;
};

} // namespace vorla
