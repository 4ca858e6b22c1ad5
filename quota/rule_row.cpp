#include "quota/rule_row.h"

#include "frame/narrow_handle.h"
#include "frame/size_text.h"
#include "store/lornix.h"

#include <cwchar>

namespace {

void setSize(const CListCtrl& list, int row, int column, std::int64_t bytes)
{
    wchar_t text[kSizeTextCapacity];
    formatSize(text, bytes);
    list.setText(row, column, text);
}

void showSizes(const CListCtrl& list, int row, const QuotaRule& rule)
{
    setSize(list, row, rule_column::kHardLimit, rule.hardLimit);
    setSize(list, row, rule_column::kSoftLimit, rule.softLimit);
    setSize(list, row, rule_column::kInUse, rule.inUse);
}

// A store may fill its buffer to the last character.
void terminate(AccountName& name)
{
    name.text[kAccountNameCapacity - 1] = L'\0';
}

// Takes over a name that may or may not stand in the buffer itself.
void take(AccountName& name, const wchar_t* text)
{
    std::wmemmove(name.text, text, wcsnlen(text, kAccountNameCapacity - 1) + 1);
    terminate(name);
}

// Reads the name of an account. @return false when the store knows none; the text is then empty.
bool readName(const void* sid, AccountName& name)
{
    const wchar_t* known = getAccountBySidW(sid, name.text, kAccountNameCapacity);
    terminate(name);
    if (known == nullptr) {
        name.text[0] = L'\0'; // whatever the store has left there
        return false;
    }
    if (known != name.text) {
        take(name, known);
    }
    return true;
}

} // namespace

AccountName accountName(const void* sid)
{
    AccountName name;
    if (sid == nullptr) {
        take(name, L"Anyone");
    } else {
        readName(sid, name);
    }
    return name;
}

AccountName accountNameOrSid(const void* sid)
{
    if (sid == nullptr) {
        return accountName(sid);
    }
    // The textual form comes first, whether or not it is needed then: stores answer the two in this order.
    AccountName textual;
    getTextualSidW(sid, textual.text, kAccountNameCapacity);
    terminate(textual);
    AccountName name;
    return readName(sid, name) ? name : textual;
}

int insertRuleRow(const CListCtrl& list, int index, const QuotaRule& rule, const wchar_t* name)
{
    const int row = list.insertRow(index, name, NarrowHandle::inRow(list.handle(), &rule).carrier());
    showSizes(list, row, rule);
    list.setText(row, rule_column::kFolder, rule.path);
    return row;
}

void showPercent(const CListCtrl& list, int row, const QuotaRule& rule)
{
    wchar_t text[kPercentTextCapacity];
    formatPercent(text, rule.inUse, rule.hardLimit);
    list.setText(row, rule_column::kPercent, text);
}

void showNumbers(const CListCtrl& list, int row, const QuotaRule& rule)
{
    showSizes(list, row, rule);
    showPercent(list, row, rule);
}

QuotaRule* ruleOfRow(const CListCtrl& list, int row)
{
    return static_cast<QuotaRule*>(NarrowHandle::fromCarrier(list.data(row)).object(list.handle()));
}
