// SPDX-License-Identifier: MIT
#include "fennic/FennicEndpoint.h"

namespace vorla {

FennicEndpoint FennicEndpoint::ofThisBuild() {
    return {
        .host = QString::fromUtf8(VORLA_FENNIC_HOST),
        .domain = VORLA_FENNIC_DOMAIN,
        .certificateAuthorityFile = QString::fromUtf8(VORLA_FENNIC_CA_FILE)};
}

} // namespace vorla
