// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vorla {

/// Ours: no clipboard should be asked to hold more.
inline constexpr std::size_t maximumDiagnosticBytes = std::size_t{64} << 20U;

/// The companion's diagnostic document as a text for people: indented, members sorted, every number
/// and string as it came.
///
/// Throws DecodeError unless `bytes` are one JSON object whose "diagnosticSchemaVersion" is 1, in
/// any spelling of that number (1.0, 1e0) that is 1 as a 64-bit floating-point number; and if the
/// text would exceed maximumDiagnosticBytes.
std::string normalizedDiagnosticDocument(std::string_view bytes);

} // namespace vorla
