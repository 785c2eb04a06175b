// SPDX-License-Identifier: MIT
#include "model/DiagnosticDocument.h"

#include "model/Json.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vorla {

namespace {

std::string withVersion(std::string_view version) {
    return R"({"diagnosticSchemaVersion":)" + std::string(version) + "}";
}

} // namespace

TEST(DiagnosticDocument, isIndentedWithSortedMembersAndPlainSlashes) {
    EXPECT_EQ(
        normalizedDiagnosticDocument(
            R"({"diagnosticSchemaVersion" : 1, "b":"x\/y","a":2, "c":[true,null,{}]})"),
        R"({
  "a": 2,
  "b": "x/y",
  "c": [
    true,
    null,
    {}
  ],
  "diagnosticSchemaVersion": 1
})");
}

TEST(DiagnosticDocument, keepsEveryNumberAndStringAsItCame) {
    EXPECT_EQ(
        normalizedDiagnosticDocument(
            R"({"n":[0.1000,1e2,12345678901234567890123,-0.0,5E-324],"s":"é\u00e9\n\u0001😀",)"
            R"("diagnosticSchemaVersion":1.0})"),
        "{\n  \"diagnosticSchemaVersion\": 1.0,\n  \"n\": [\n    0.1000,\n    1e2,\n"
        "    12345678901234567890123,\n    -0.0,\n    5E-324\n  ],\n"
        "  \"s\": \"éé\\n\\u0001😀\"\n}");
}

TEST(DiagnosticDocument, sortsMembersByTheBytesOfTheirNames) {
    const std::string text =
        normalizedDiagnosticDocument(R"({"é":1,"z":1,"":1,"Z":1,"diagnosticSchemaVersion":1})");
    EXPECT_EQ(
        text, "{\n  \"\": 1,\n  \"Z\": 1,\n  \"diagnosticSchemaVersion\": 1,\n  \"z\": 1,\n"
              "  \"é\": 1\n}");
}

TEST(DiagnosticDocument, takesEverySpellingOfVersionOne) {
    for (const std::string_view version :
         {"1", "1.0", "1e0", "1E+0", "10e-1", "0.1e1", "1.000000000000000000000000",
          // As a 64-bit floating-point number this is 1.
          "1.0000000000000001e0"}) {
        EXPECT_NE(normalizedDiagnosticDocument(withVersion(version)), "") << version;
    }
}

TEST(DiagnosticDocument, refusesEveryOtherVersion) {
    for (const std::string_view version :
         {"2", "0", "-1", "1.5", "0.9999999999999999", "1.0000000000000003", "11", "true", "false",
          "null", R"("1")", "[1]", R"({"diagnosticSchemaVersion":1})"}) {
        EXPECT_THROW(normalizedDiagnosticDocument(withVersion(version)), DecodeError) << version;
    }
}

TEST(DiagnosticDocument, refusesADocumentWithoutVersion) {
    EXPECT_THROW(normalizedDiagnosticDocument("{}"), DecodeError);
    EXPECT_THROW(normalizedDiagnosticDocument(R"({"DiagnosticSchemaVersion":1})"), DecodeError);
    EXPECT_THROW(
        normalizedDiagnosticDocument(R"({"inner":{"diagnosticSchemaVersion":1}})"), DecodeError);
}

TEST(DiagnosticDocument, refusesATopLevelThatIsNoObject) {
    for (const std::string_view document :
         {R"([{"diagnosticSchemaVersion":1}])", "1", "null", R"("diagnosticSchemaVersion")"}) {
        EXPECT_THROW(normalizedDiagnosticDocument(document), DecodeError) << document;
    }
}

TEST(DiagnosticDocument, refusesWhatIsNotJson) {
    const std::string document = withVersion("1");
    for (const std::string& broken :
         {std::string(), std::string("  "), std::string("usage: vorla-usage"),
          document.substr(0, document.size() - 1), document + "x", document + document,
          document + '\0', withVersion("01"), withVersion("\"\xFF\""),
          std::string(R"({"diagnosticSchemaVersion":1,})")}) {
        EXPECT_THROW(normalizedDiagnosticDocument(broken), DecodeError) << broken;
    }
    EXPECT_NE(normalizedDiagnosticDocument("\n" + document + " \n"), "");
}

TEST(DiagnosticDocument, countsTheLastOfARepeatedVersion) {
    EXPECT_EQ(
        normalizedDiagnosticDocument(
            R"({"diagnosticSchemaVersion":2,"diagnosticSchemaVersion":1})"),
        "{\n  \"diagnosticSchemaVersion\": 1\n}");
    EXPECT_THROW(
        normalizedDiagnosticDocument(
            R"({"diagnosticSchemaVersion":1,"diagnosticSchemaVersion":2})"),
        DecodeError);
}

TEST(DiagnosticDocument, takesATextOfExactlyItsMaximumAndRefusesALongerOne) {
    // Nested lists make much text of little document, since indentation grows with the depth.
    std::string lists;
    for (int count = 0; count < 200; ++count) {
        lists += std::string(400, '[') + std::string(400, ']') + ",";
    }
    const auto document = [&lists](std::size_t fillingBytes) {
        return R"({"diagnosticSchemaVersion":1,"a":[)" + lists + '"' +
               std::string(fillingBytes, 'x') + "\"]}";
    };
    const std::size_t unfilled = normalizedDiagnosticDocument(document(0)).size();
    ASSERT_GT(unfilled, maximumDiagnosticBytes - (std::size_t{4} << 20U));
    const std::size_t room = maximumDiagnosticBytes - unfilled;
    EXPECT_EQ(normalizedDiagnosticDocument(document(room)).size(), maximumDiagnosticBytes);
    EXPECT_THROW(normalizedDiagnosticDocument(document(room + 1)), DecodeError);
}

} // namespace vorla
