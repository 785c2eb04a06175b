// SPDX-License-Identifier: MIT
#include "linux/bus/Message.h"

#include <systemd/sd-bus.h>

#include <system_error>

namespace vorla::bus {

int checked(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
    return result;
}

void Message::Release::operator()(sd_bus_message* message) const {
    sd_bus_message_unref(message);
}

Message Message::owning(sd_bus_message* message) {
    return Message(message);
}

Message Message::sharing(sd_bus_message* message) {
    return Message(sd_bus_message_ref(message));
}

std::optional<BusError> Message::error() const {
    const sd_bus_error* const error = sd_bus_message_get_error(message_.get());
    if (error == nullptr) {
        return std::nullopt;
    }
    return BusError{error->name, error->message == nullptr ? "" : error->message};
}

void Message::appendBasic(char type, const void* value) {
    checked(sd_bus_message_append_basic(native(), type, value), "sd_bus_message_append_basic");
}

void Message::appendArray(char type, const void* items, std::size_t bytes) {
    checked(
        sd_bus_message_append_array(native(), type, items, bytes), "sd_bus_message_append_array");
}

void Message::openContainer(char type, const std::string& contents) {
    checked(
        sd_bus_message_open_container(native(), type, contents.c_str()),
        "sd_bus_message_open_container");
}

void Message::closeContainer() {
    checked(sd_bus_message_close_container(native()), "sd_bus_message_close_container");
}

namespace {

/// Reading reports the end of the message by 0, which is an error where a value is due.
void checkedFound(int result, const char* what) {
    checked(result == 0 ? -ENXIO : result, what);
}

} // namespace

void Message::readBasic(char type, void* value) {
    checkedFound(sd_bus_message_read_basic(native(), type, value), "sd_bus_message_read_basic");
}

void Message::enterContainer(char type, const std::string& contents) {
    checkedFound(
        sd_bus_message_enter_container(native(), type, contents.c_str()),
        "sd_bus_message_enter_container");
}

void Message::exitContainer() {
    checked(sd_bus_message_exit_container(native()), "sd_bus_message_exit_container");
}

bool Message::atEnd() {
    return checked(sd_bus_message_at_end(native(), 0), "sd_bus_message_at_end") > 0;
}

std::string Message::nextVariantContents() {
    char type = 0;
    const char* contents = nullptr;
    checkedFound(sd_bus_message_peek_type(native(), &type, &contents), "sd_bus_message_peek_type");
    checked(type == SD_BUS_TYPE_VARIANT ? 0 : -ENXIO, "variant expected");
    return contents;
}

void Message::skip(const std::string& signature) {
    checkedFound(sd_bus_message_skip(native(), signature.c_str()), "sd_bus_message_skip");
}

} // namespace vorla::bus
