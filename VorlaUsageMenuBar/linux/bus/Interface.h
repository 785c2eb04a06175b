// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Bus.h"

namespace vorla::bus {

/// Results of an exported method; std::tuple stands for several of them, void for none.
template <typename Result>
struct Results {
    static std::string signature() { return Codec<Result>::signature(); }

    static void write(Message& answer, const Result& result) { answer.write(result); }
};

template <typename... Result>
struct Results<std::tuple<Result...>> {
    static std::string signature() { return (std::string{} + ... + Codec<Result>::signature()); }

    static void write(Message& answer, const std::tuple<Result...>& results) {
        std::apply([&](const Result&... result) { answer.write(result...); }, results);
    }
};

/// A method, a property or a signal of an exported object.
struct Member {
    enum class Kind { method, property, signal };

    Kind kind = Kind::signal;
    std::string name = {};
    /// Of the arguments, or of the property itself.
    std::string signature = {};
    std::string results = {};
    std::function<void(Message& call, Message& answer)> call = {};
    std::function<void(Message& answer)> get = {};
};

/// One interface of an object that others on the bus may use, built before it is exported.
///
/// Calls whose arguments have other types than the handler are refused before they reach it. A
/// handler that throws std::system_error answers with an error: EINVAL is InvalidArgs.
class Interface final {
public:
    explicit Interface(std::string name) : name_(std::move(name)) {}

    template <typename Handler>
    void method(std::string name, Handler handler) {
        addMethod(std::move(name), std::function(std::move(handler)));
    }

    /// Read-only, and read afresh at each request. Changes are not announced by PropertiesChanged.
    template <typename Getter>
    void property(std::string name, Getter getter) {
        using Value = std::invoke_result_t<Getter>;
        members_.push_back(
            {.kind = Member::Kind::property,
             .name = std::move(name),
             .signature = Codec<Value>::signature(),
             .get = [getter = std::move(getter)](Message& answer) { answer.write(getter()); }});
    }

    /// Declares a signal for those who look at the object; sending it is Bus::emit().
    template <typename... Arguments>
    void signal(std::string name) {
        members_.push_back(
            {.kind = Member::Kind::signal,
             .name = std::move(name),
             .signature = (std::string{} + ... + Codec<Arguments>::signature())});
    }

    const std::string& name() const { return name_; }

    const std::vector<Member>& members() const { return members_; }

private:
    template <typename Result, typename... Arguments>
    void addMethod(std::string name, std::function<Result(Arguments...)> handler) {
        Member method = {
            .kind = Member::Kind::method,
            .name = std::move(name),
            .signature = (std::string{} + ... + Codec<std::decay_t<Arguments>>::signature())};
        if constexpr (!std::is_void_v<Result>) {
            method.results = Results<Result>::signature();
        }
        method.call = [handler = std::move(handler)](Message& call, Message& answer) {
            // Braces, unlike parentheses, read the arguments in their order.
            const std::tuple<std::decay_t<Arguments>...> arguments{
                call.read<std::decay_t<Arguments>>()...};
            if constexpr (std::is_void_v<Result>) {
                std::apply(handler, arguments);
                static_cast<void>(answer);
            } else {
                Results<Result>::write(answer, std::apply(handler, arguments));
            }
        };
        members_.push_back(std::move(method));
    }

    std::string name_;
    std::vector<Member> members_;
};

/// Offers `interface` at `path` until the slot is destroyed, together with what every object has:
/// introspection, properties and ping.
[[nodiscard]] Slot exportObject(Bus& bus, const std::string& path, Interface interface);

} // namespace vorla::bus
