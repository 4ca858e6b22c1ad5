// What the library begins with, which only the very first sort of a process shows: this program has no other test.
#include "tests/support/list_host.h"
#include "tests/support/recording_store.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(FirstSortTest, IsAFirstOneForTheFirstColumnToo)
{
    const RecordingStore store;
    ListHost host;
    initializeListCtrl2(host.object(), nullptr);
    host.addRow(1, {L"alice"});
    host.addRow(2, {L"bob"});
    sortListCtrl2(host.object(), 0);
    EXPECT_THAT(host.column(0), ElementsAre("bob", "alice"));
}
