// SPDX-License-Identifier: MIT
#include "linux/bus/Interface.h"

#include <systemd/sd-bus.h>

#include <bit>

namespace vorla::bus {

namespace {

/// Runs `work`, and turns what it throws into an error for the peer.
template <typename Work>
int guarded(sd_bus_error* error, const Work& work) {
    try {
        work();
        return 1;
    } catch (const std::system_error& failure) {
        return sd_bus_error_set_errnof(error, failure.code().value(), "%s", failure.what());
    } catch (...) {
        return sd_bus_error_set_errno(error, EIO);
    }
}

int answerCall(sd_bus_message* message, void* member, sd_bus_error* error) {
    return guarded(error, [&] {
        auto call = Message::sharing(message);
        sd_bus_message* reply = nullptr;
        checked(
            sd_bus_message_new_method_return(message, &reply), "sd_bus_message_new_method_return");
        auto answer = Message::owning(reply);
        static_cast<const Member*>(member)->call(call, answer);
        if (sd_bus_message_get_expect_reply(message) > 0) {
            checked(sd_bus_send(nullptr, reply, nullptr), "sd_bus_send");
        }
    });
}

int answerProperty(
    sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* member,
    sd_bus_error* error) {
    return guarded(error, [&] {
        auto answer = Message::sharing(reply);
        static_cast<const Member*>(member)->get(answer);
    });
}

/// An interface and its table in the library's form, which points into it; owned by its slot.
struct Exported {
    Interface interface;
    std::vector<sd_bus_vtable> table;
};

/// The handlers get the address of their member instead of an offset into one big object.
std::size_t handlerOffset(const Member& member) {
    return std::bit_cast<std::size_t>(&member);
}

void fillRow(sd_bus_vtable& row, const Member& member) {
    switch (member.kind) {
    case Member::Kind::method:
        row.type = _SD_BUS_VTABLE_METHOD;
        // Without the first flag each caller's privileges would be looked up, which blocks.
        row.flags = SD_BUS_VTABLE_UNPRIVILEGED | SD_BUS_VTABLE_ABSOLUTE_OFFSET;
        row.x.method = {
            .member = member.name.c_str(),
            .signature = member.signature.c_str(),
            .result = member.results.c_str(),
            .handler = &answerCall,
            .offset = handlerOffset(member),
            .names = ""};
        break;
    case Member::Kind::property:
        row.type = _SD_BUS_VTABLE_PROPERTY;
        row.flags = SD_BUS_VTABLE_ABSOLUTE_OFFSET;
        row.x.property = {
            .member = member.name.c_str(),
            .signature = member.signature.c_str(),
            .get = &answerProperty,
            .set = nullptr,
            .offset = handlerOffset(member)};
        break;
    case Member::Kind::signal:
        row.type = _SD_BUS_VTABLE_SIGNAL;
        row.x.signal = {
            .member = member.name.c_str(), .signature = member.signature.c_str(), .names = ""};
        break;
    }
}

/// The rows start out zeroed, as the library demands for the unused parts of its unions.
void fillTable(std::vector<sd_bus_vtable>& table, const std::vector<Member>& members) {
    table.resize(members.size() + 2);
    table.front().type = _SD_BUS_VTABLE_START;
    table.front().x.start = {
        .element_size = sizeof(sd_bus_vtable),
        .features = _SD_BUS_VTABLE_PARAM_NAMES,
        .vtable_format_reference = &sd_bus_object_vtable_format};
    for (std::size_t index = 0; index < members.size(); ++index) {
        fillRow(table[index + 1], members[index]);
    }
    table.back().type = _SD_BUS_VTABLE_END;
}

void destroyExported(void* exported) {
    const std::unique_ptr<Exported> last(static_cast<Exported*>(exported));
}

} // namespace

Slot exportObject(Bus& bus, const std::string& path, Interface interface) {
    auto exported = std::make_unique<Exported>(Exported{std::move(interface), {}});
    fillTable(exported->table, exported->interface.members());
    sd_bus_slot* slot = nullptr;
    checked(
        sd_bus_add_object_vtable(
            bus.native(), &slot, path.c_str(), exported->interface.name().c_str(),
            exported->table.data(), exported.get()),
        "sd_bus_add_object_vtable");
    Slot owner(slot);
    checked(
        sd_bus_slot_set_destroy_callback(slot, &destroyExported),
        "sd_bus_slot_set_destroy_callback");
    // The slot destroys it from now on, and a running handler keeps its slot.
    static_cast<void>(exported.release());
    return owner;
}

} // namespace vorla::bus
