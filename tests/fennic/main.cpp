// SPDX-License-Identifier: MIT
#include <QApplication>

#include <gtest/gtest.h>

int main(int argumentCount, char* arguments[]) {
    testing::InitGoogleTest(&argumentCount, arguments);
    // No display unless one is meant, no theme of the desktop's, and no way out by a proxy.
    const QByteArray platform = qgetenv("VORLA_TEST_PLATFORM");
    qputenv("QT_QPA_PLATFORM", platform.isEmpty() ? QByteArray("offscreen") : platform);
    qunsetenv("XDG_CURRENT_DESKTOP");
    for (const char* name :
         {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY",
          "no_proxy", "NO_PROXY"}) {
        qunsetenv(name);
    }
    const QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
