// The turn of the one fill that may ask the store.
#pragma once

class AccountSink;

/// Fills take turns: names are resolved in module-wide buffers, and the store is unlocked. An abandoned fill may keep
/// its turn as long as the store keeps it, for ever when a call never returns.
class FillTurn {
public:
    FillTurn() = default;
    FillTurn(const FillTurn&) = delete;
    FillTurn& operator=(const FillTurn&) = delete;
    /// Passes the turn on.
    ~FillTurn();

    /// Waits for the turn as long as the list's window exists; the list is told when there is anything to wait for.
    /// @return whether it is this fill's turn now.
    bool take(AccountSink& sink);

    /// A list went: a fill that waits for its turn looks whether it was its own.
    static void lookAgain();

private:
    bool m_taken = false;
};
