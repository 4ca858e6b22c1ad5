// The owner of what a function takes back.
#include "store/owned.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace {

std::vector<int*> given;
void giveBack(int* what)
{
    given.push_back(what);
}
using Mine = Owned<int*, giveBack>;

void giveBackBroken(int* what)
{
    given.push_back(what);
    throw std::runtime_error("broken");
}

class OwnedTest : public testing::Test {
protected:
    OwnedTest() { given.clear(); }

    int m_one = 1;
    int m_other = 2;
};

} // namespace

TEST_F(OwnedTest, GivesBackOnceWhenItGoes)
{
    {
        const Mine owner(&m_one);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.get(), &m_one);
    }
    EXPECT_EQ(given, std::vector{&m_one});
}

TEST_F(OwnedTest, NeverGivesBackNothing)
{
    {
        Mine empty;
        empty.reset();
        Owned<int*, giveBack, -1> file;
        EXPECT_EQ(file.get(), reinterpret_cast<int*>(-1));
        EXPECT_EQ(file, nullptr);
    }
    EXPECT_TRUE(given.empty());
}

TEST_F(OwnedTest, GivesBackWhatAnotherTakesThePlaceOf)
{
    Mine owner(&m_one);
    owner.reset(&m_other);
    EXPECT_EQ(given, std::vector{&m_one});
    *owner.put() = &m_one;
    EXPECT_EQ(given, (std::vector{&m_one, &m_other}));
    owner = Mine(&m_other);
    EXPECT_EQ(given, (std::vector{&m_one, &m_other, &m_one}));
    EXPECT_EQ(owner.get(), &m_other);
}

TEST_F(OwnedTest, PassesOnWhatItHolds)
{
    Mine first(&m_one);
    Mine second(std::move(first));
    EXPECT_EQ(first, nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(second.release(), &m_one);
    EXPECT_EQ(second, nullptr);
    EXPECT_TRUE(given.empty());
}

TEST_F(OwnedTest, LetsGoBeforeItGivesBack)
{
    {
        Owned<int*, giveBackBroken> owner(&m_one);
        EXPECT_THROW(owner.reset(), std::runtime_error);
        EXPECT_EQ(owner, nullptr);
    }
    EXPECT_EQ(given, std::vector{&m_one}); // and not tried again
}
