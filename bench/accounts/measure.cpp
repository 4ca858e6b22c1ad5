#include "measure.h"

#include "accounts/sid_ctrl.h"
#include "bench/support/list_view.h"
#include "parts.h"
#include "row_by_row.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* kFirstRows = "first rows on screen, beside a whole fill";
constexpr const char* kSort = "sort by account";

const char* findingName(Source source)
{
    return source == Source::kStore ? "finding in the store alone, beside a whole fill"
                                    : "finding in the directory alone, beside a whole fill";
}

const char* fillName(Source source)
{
    return source == Source::kStore ? "fill from the store" : "fill from the directory";
}

void prepareColumns(HWND window)
{
    CSidCtrl list;
    list.attach(window);
    list.initColumns();
    list.detach();
}

// All lists of the process share one order for rows that come back; it turns round each time.
bool nextIsFromZ(int& sorts)
{
    return sorts++ % 2 == 0;
}
int corvaneSorts = 0;
int bareSorts = 0;

} // namespace

const Measure::Filter Measure::kFilters[] = {
    {L"b", "filter, one in 10 stays", "filter, the others come back", Source::kStore},
    {L"bq", "filter, one in 1,000 stays", "filter, the others come back (1,000)", Source::kDirectory},
    {L"x", "filter, none stays", "filter, all come back", Source::kStore},
};

bool Measure::run(int fewer, std::optional<double> rowByRow)
{
    std::fprintf(stderr, "%d accounts\n", m_users);
    const int rounds = m_options.roundsOf(m_users);
    for (int round = 0; round < rounds; ++round) {
        // Each goes first as often as the other.
        for (const int turn : {round, round + 1}) {
            turn % 2 == 0 ? corvaneRound() : bareRound(round == 0);
        }
    }
    if (m_options.rowByRow && (fewer == 0 || endsInTime(rowByRow, static_cast<double>(m_users) / fewer))) {
        rowByRowRound(Source::kStore);
        rowByRowRound(Source::kDirectory);
    }
    return m_allSame;
}

void Measure::same(const std::string& measure, const ListWindow& window)
{
    settle(window.window());
    const std::uint64_t shown = list_view::hashOfRows(window.list(), {0, 1, 2});
    if (m_shown.try_emplace(measure, shown).first->second != shown) {
        std::fprintf(stderr, "Not the same rows: %s\n", measure.c_str());
        m_allSame = false;
    }
}

void Measure::corvaneRound()
{
    const auto fill = [&](const ListWindow& window, CSidCtrl& list, Source source) {
        serveAccounts(m_users, source);
        list.attach(window.list());
        Time first{};
        const Time start = now();
        m_corvane[fillName(source)].add(timed([&] {
            list.startFill(searchBase(source));
            first = window.waitForFill();
        }));
        m_corvane[kFirstRows].add(first - start);
        same("fill", window);
    };
    for (const Filter& filter : kFilters) {
        CSidCtrl list; // outlives its window, which releases the rows' identifiers through it
        ListWindow window;
        fill(window, list, filter.source);
        window.filters().type(0, filter.text);
        m_corvane[filter.narrow].add(timed([&] { list.applyFilter(0); }));
        same(filter.narrow, window);
        window.filters().type(0, L"");
        m_corvane[filter.widen].add(timed([&] { list.applyFilter(0); }));
        same(nextIsFromZ(corvaneSorts) ? "Z to A" : "A to Z", window);
    }
    CSidCtrl list;
    const ListWindow window;
    fill(window, list, Source::kDirectory);
    m_corvane[kSort].add(timed([&] { list.onColumnClick(0); }));
    same("Z to A", window);
    for (const Source source : {Source::kStore, Source::kDirectory}) {
        serveAccounts(m_users, source);
        m_corvane[findingName(source)].add(timed([&] { findAccounts(source); }));
    }
}

void Measure::bareFill(const ListWindow& window)
{
    m_bare["fill"].add(timed([&] {
        prepareColumns(window.list());
        m_bareList.fill(window.list());
        UpdateWindow(window.list());
    }));
    same("fill", window);
}

void Measure::bareFilter(const Filter& filter, bool rebuilding)
{
    const ListWindow window;
    bareFill(window);
    const std::vector<int> staying = m_bareList.rows(filter.text, true);
    const std::vector<int> going = m_bareList.rows(filter.text, false);
    (rebuilding ? m_rebuilding : m_deleting)[filter.narrow].add(timed([&] {
        rebuilding ? m_bareList.rebuild(window.list(), staying)
                   : m_bareList.removeOneByOne(window.list(), going);
    }));
    same(filter.narrow, window);
    if (rebuilding) {
        const bool fromZ = nextIsFromZ(bareSorts);
        m_bare[filter.widen].add(timed([&] { m_bareList.putBack(window.list(), going, fromZ); }));
        same(fromZ ? "Z to A" : "A to Z", window);
    }
}

void Measure::bareRound(bool bothWays)
{
    for (const Filter& filter : kFilters) {
        bareFilter(filter, true);
        if (bothWays) {
            bareFilter(filter, false);
        }
    }
    const ListWindow window;
    bareFill(window);
    m_bare[kSort].add(timed([&] { m_bareList.sort(window.list(), true); }));
    same("Z to A", window);
}

void Measure::rowByRowRound(Source source)
{
    serveAccounts(m_users, source);
    const ListWindow window;
    m_rowByRow[fillName(source)].add(timed([&] {
        prepareColumns(window.list());
        fillRowByRow(window, source);
    }));
    same("fill", window);
}

std::optional<double> Measure::rowByRow() const
{
    const auto found = m_rowByRow.find(fillName(Source::kStore));
    return found != m_rowByRow.end() ? std::optional(found->second.median(Clock::kWall)) : std::nullopt;
}

std::vector<Comparison> Measure::comparisons() const
{
    std::vector<Comparison> all;
    for (const Source source : {Source::kStore, Source::kDirectory}) {
        const char* const name = fillName(source);
        const auto slow = m_rowByRow.find(name);
        // Two threads do it.
        all.push_back({name, m_users, m_corvane.at(name), m_bare.at("fill"),
                       slow != m_rowByRow.end() ? std::optional(slow->second) : std::nullopt, Clock::kWall});
    }
    for (const Source source : {Source::kStore, Source::kDirectory}) {
        const Tally& fill = m_corvane.at(fillName(source));
        if (fill.isLong() && m_bare.at("fill").isLong()) {
            all.push_back({std::string(fillName(source)) + ", processor time of the list's thread", m_users,
                           fill, m_bare.at("fill"), std::nullopt, Clock::kThread});
        }
        all.push_back({findingName(source), m_users, m_corvane.at(findingName(source)), m_bare.at("fill"),
                       std::nullopt, Clock::kWall});
    }
    all.push_back(
        {kFirstRows, m_users, m_corvane.at(kFirstRows), m_bare.at("fill"), std::nullopt, Clock::kWall});
    for (const Filter& filter : kFilters) {
        const Tally& deleting = m_deleting.at(filter.narrow);
        const Tally& rebuilding = m_rebuilding.at(filter.narrow);
        all.push_back({filter.narrow, m_users, m_corvane.at(filter.narrow),
                       deleting.median() < rebuilding.median() ? deleting : rebuilding});
        all.push_back({filter.widen, m_users, m_corvane.at(filter.widen), m_bare.at(filter.widen)});
    }
    all.push_back({kSort, m_users, m_corvane.at(kSort), m_bare.at(kSort)});
    return all;
}
