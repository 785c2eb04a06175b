// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Message.h"

#include <string>
#include <string_view>

/// What went wrong with the notification service, in words for the user. Pure.
namespace vorla {

/// A sentence, never empty and without bus names of ours. Where only the service knows the reason,
/// it is the first line of what it says, at most 200 characters.
std::string notificationErrorText(const bus::BusError& error);

/// Whether a service was there and refused, or answered in a way that cannot be read.
bool isFromTheService(const bus::BusError& error);

bool saysThatTheBusIsGone(const bus::BusError& error);

/// Whether the bus knows of no service that it could start.
bool saysThatNothingCanBeStarted(const bus::BusError& error);

/// Some services refuse a notification with the same texts as one less than a second old. The user
/// has it on the screen then.
bool saysThatItIsShownAlready(const bus::BusError& error);

} // namespace vorla
