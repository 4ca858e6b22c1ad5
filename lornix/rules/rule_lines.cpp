#include "lornix/rules/rule_lines.h"

#include "lornix/text/escaped_text.h"
#include "lornix/text/framed_text.h"
#include "lornix/text/put_text.h"

namespace lornix {
namespace {

constexpr std::size_t kLongestNumber = 24; // with what stands behind it

char* putColumn(char* to, std::int64_t number)
{
    to = putNumber(to, number);
    *to = '\t';
    return to + 1;
}

} // namespace

void RuleLines::startFolder(std::u16string_view folder)
{
    m_end = '\t';
    appendEscaped(m_end, folder);
    m_end += kLineEnd;
}

void RuleLines::append(std::int64_t hardLimit, std::int64_t softLimit, std::int64_t inUse,
                       std::span<const std::uint8_t> sid)
{
    if (m_limits.empty() || hardLimit != m_hardLimit || softLimit != m_softLimit) {
        char limits[2 * kLongestNumber];
        const char* end = putColumn(putColumn(limits, hardLimit), softLimit);
        m_limits.assign(limits, static_cast<std::size_t>(end - limits));
        m_hardLimit = hardLimit;
        m_softLimit = softLimit;
    }
    const std::size_t most = m_limits.size() + kLongestNumber + kMaxSidText + m_end.size();
    if (m_text.size() - m_size < most) {
        m_text.resize(m_text.size() + m_text.size() / 2 + most);
    }
    char* to = putColumn(putText(m_text.data() + m_size, m_limits), inUse);
    to = putText(m_accounts.put(to, sid), m_end);
    m_size = static_cast<std::size_t>(to - m_text.data());
}

} // namespace lornix
