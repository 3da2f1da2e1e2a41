#pragma once

namespace orvo::test {

/// Private HOME and XDG folders for this process, so that no test touches the person's own files.
/// Call before the application object is made.
void isolateEnvironment();

/// Runs all tests of the binary. A Qt warning that is not on the allow list fails the test that was running.
int runAllTests(int argc, char** argv);

}  // namespace orvo::test
