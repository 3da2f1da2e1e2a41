#pragma once

/// Makes one system call of this process fail. The calls that apply uses are defined in this test program in
/// front of the C library's; they count themselves while armed and pass everything on.
namespace orvo::test::faults {

enum class Effect {
    Fail,  ///< The call is not made; errno is `code`.
    Kill,  ///< The process is killed when the call has been made, which is as good as before the next one.
};

/// The `number`-th call from now on, counted from 1.
void arm(int number, Effect effect, int code = 0);
/// Exchanging and exclusive renames fail with EINVAL from now on, as on file systems that lack them.
void withoutRenameFlags();
/// Whether the armed call was reached.
bool fired();
void disarm();

}  // namespace orvo::test::faults
