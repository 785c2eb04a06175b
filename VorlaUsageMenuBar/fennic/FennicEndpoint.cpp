// SPDX-License-Identifier: MIT
#include "fennic/FennicEndpoint.h"

namespace vorla {

namespace {

constexpr QLatin1StringView scheme("https");
constexpr QLatin1StringView path("/api/fennic");
constexpr int defaultPort = 443;

} // namespace

std::optional<QUrl> FennicEndpoint::url() const {
    QUrl url(scheme + QLatin1StringView("://") + host + path, QUrl::StrictMode);
    // A host that brings along more than a name and a port would lead somewhere else.
    const bool isExact = url.isValid() && !url.host().isEmpty() && url.userInfo().isEmpty() &&
                         url.path() == path && !url.hasQuery() && !url.hasFragment();
    if (!isExact) {
        return std::nullopt;
    }
    return url;
}

bool isSameOrigin(const QUrl& one, const QUrl& other) {
    return one.scheme() == other.scheme() && one.host() == other.host() &&
           one.port(defaultPort) == other.port(defaultPort) && one.userInfo().isEmpty() &&
           other.userInfo().isEmpty();
}

} // namespace vorla
