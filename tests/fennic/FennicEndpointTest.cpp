// SPDX-License-Identifier: MIT
#include "fennic/FennicEndpoint.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

std::string addressFor(const char* host) {
    const FennicEndpoint endpoint = {
        .host = QString::fromUtf8(host), .domain = {}, .certificateAuthorityFile = {}};
    const auto url = endpoint.url();
    return url ? url->toString(QUrl::FullyEncoded).toStdString() : "none";
}

} // namespace

TEST(FennicEndpoint, formsTheAddressFromAHost) {
    EXPECT_EQ(addressFor("fennic.vorla.example"), "https://fennic.vorla.example/api/fennic");
    EXPECT_EQ(addressFor("localhost:8443"), "https://localhost:8443/api/fennic");
    EXPECT_EQ(addressFor("[::1]:8443"), "https://[::1]:8443/api/fennic");
}

TEST(FennicEndpoint, formsNoneFromWhatIsNotAHost) {
    for (const char* host :
         {"", ":443", "a b", "host:port", "host:99999", "user@host", "user:secret@host",
          "host/path", "host?query", "host#part", "host/", "[::1"}) {
        EXPECT_EQ(addressFor(host), "none") << host;
    }
}

TEST(FennicEndpoint, isFixedWhenTheProgramIsBuilt) {
    const FennicEndpoint endpoint = FennicEndpoint::ofThisBuild();
    EXPECT_EQ(endpoint.host, VORLA_FENNIC_HOST);
    EXPECT_EQ(endpoint.domain, VORLA_FENNIC_DOMAIN);
    EXPECT_EQ(endpoint.certificateAuthorityFile, VORLA_FENNIC_CA_FILE);
    EXPECT_TRUE(endpoint.url());
}

TEST(FennicEndpoint, sharesItsOriginOnlyWithTheSameSchemeHostAndPort) {
    const QUrl url("https://service.example/api");
    for (const char* same :
         {"https://service.example/", "https://SERVICE.example:443/x",
          "https://service.example?y"}) {
        EXPECT_TRUE(isSameOrigin(url, QUrl(same))) << same;
    }
    for (const char* other :
         {"http://service.example/api", "http://service.example:443/api",
          "https://service.example:444/api", "https://service.example./api",
          "https://sub.service.example/api", "https://me@service.example/api", "/api", ""}) {
        EXPECT_FALSE(isSameOrigin(url, QUrl(other))) << other;
        EXPECT_FALSE(isSameOrigin(QUrl(other), url)) << other;
    }
}

} // namespace vorla
