#include "assistants/SignInStatus.h"

#include "platform/LocalTools.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

ToolResult result(int code, const char* output, bool timedOut = false) {
    return {.code = code, .output = QString::fromUtf8(output), .timedOut = timedOut};
}

TEST(SignInStatus, CodexNeedsStatusZeroAndTheWords) {
    EXPECT_EQ(codexSignInLabel(result(0, "Logged in using ChatGPT\n")), QStringLiteral("Signed in"));
    EXPECT_EQ(codexSignInLabel(result(1, "Logged in")), QStringLiteral("Sign in needed"));
    EXPECT_EQ(codexSignInLabel(result(0, "Not logged in")), QStringLiteral("Sign in needed"));
    EXPECT_EQ(codexSignInLabel(result(143, "", true)), QStringLiteral("Check timed out"));
    EXPECT_EQ(codexSignInLabel(result(-1, "No such file or directory")), QStringLiteral("Sign in needed"));
}

TEST(SignInStatus, ClaudeNeedsABooleanMemberAndIgnoresTheExitStatus) {
    EXPECT_EQ(claudeSignInLabel(result(0, R"({"loggedIn": true})")), QStringLiteral("Signed in"));
    EXPECT_EQ(claudeSignInLabel(result(1, R"({"loggedIn": true})")), QStringLiteral("Signed in"));
    EXPECT_EQ(claudeSignInLabel(result(1, R"({"loggedIn": false})")), QStringLiteral("Sign in needed"));
    for (const char* output :
         {"", "Signed in", "true", "[true]", R"({"loggedIn": "true"})", R"({"loggedIn": 1})",
          R"({"loggedin": true})", R"(warning {"loggedIn": true})"}) {
        EXPECT_EQ(claudeSignInLabel(result(0, output)), QStringLiteral("Login status unavailable")) << output;
    }
    EXPECT_EQ(claudeSignInLabel(result(143, R"({"loggedIn": true})", true)),
              QStringLiteral("Login status unavailable"));
}

}  // namespace
}  // namespace orvo
