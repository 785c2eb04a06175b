// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

#include <optional>
#include <string>

namespace vorla {

/// Where the task-fit service is.
struct FennicEndpoint {
    /// A port may follow, after a colon.
    QString host;
    /// The public name of the service, as the user is told it.
    std::string domain;
    /// A file with a certificate authority that is trusted besides the system's; empty for none.
    QString certificateAuthorityFile;

    /// As fixed when the program was built.
    static FennicEndpoint ofThisBuild();

    /// The address that checks are sent to, or nothing if the host does not make one.
    std::optional<QUrl> url() const;
};

/// Whether both have the same scheme, host and port, and neither has credentials in it.
bool isSameOrigin(const QUrl& one, const QUrl& other);

} // namespace vorla
