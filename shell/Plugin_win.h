// What the host calls: the export and the two entry functions that it publishes. See api/PluginApi.h for their contract.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include <cstdint>

#include "api/PluginApi.h"

namespace width {

/// Stores the language and fills the host's record. Returns 1.
std::int32_t InitPlugin(pi_table* pTable, std::uint16_t nLangId) noexcept;

}  // namespace width
