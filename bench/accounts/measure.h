// The account list, the bare control and the straightforward way, timed at one size.
#pragma once

#include "bare_list.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "bench/support/time.h"
#include "bench_accounts.h"
#include "list_window.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

class Measure {
public:
    Measure(int users, const Options& options)
        : m_users(users)
        , m_options(options)
        , m_bareList(users)
    {
    }

    /// @param rowByRow  what the straightforward fill took with `fewer` accounts; none when it was left out there.
    /// @return false when the sides did not show the same rows.
    bool run(int fewer, std::optional<double> rowByRow);

    std::vector<Comparison> comparisons() const;
    /// Seconds of the straightforward fill.
    std::optional<double> rowByRow() const;

private:
    /// A text typed in the first column's filter, of a list that was just filled.
    struct Filter {
        const wchar_t* text;
        const char* narrow; ///< the measures
        const char* widen;
        Source source; ///< of the fill before
    };
    static const Filter kFilters[];

    /// The times of a side.
    using Tallies = std::map<std::string, Tally>;

    void corvaneRound();
    void bareRound(bool bothWays);
    void bareFilter(const Filter& filter, bool rebuilding);
    void bareFill(const ListWindow& window);
    void rowByRowRound(Source source);
    void same(const std::string& measure, const ListWindow& window);

    int m_users;
    const Options& m_options;
    BareList m_bareList;
    Tallies m_corvane;
    Tallies m_bare;
    Tallies m_deleting;
    Tallies m_rebuilding;
    Tallies m_rowByRow;
    std::map<std::string, std::uint64_t> m_shown; ///< after each measure
    bool m_allSame = true;
};
