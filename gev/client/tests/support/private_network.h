// Moves the test process into a network namespace of its own with only loopback up, so
// broadcasts never leave it. Needs CAP_SYS_ADMIN; without it tests that broadcast skip.
#pragma once

namespace ry::gev::testing {

// Safe to call more than once; returns whether the process runs in a private namespace.
bool EnterPrivateNetwork();

}  // namespace ry::gev::testing
