// Whatever the bytes are: no fault, and whoever is listed is found by SID and by name.
#include "lornix/accounts/directory.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>

using namespace lornix;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const AccountDirectory directory(std::string_view(reinterpret_cast<const char*>(data), size));
    require(directory.condition != Condition::kForeign || directory.size() == 0,
            "accounts of a foreign file");
    require(std::ranges::is_sorted(directory.flaws.first, {}, &Flaw::line), "the flaws by line");
    const std::u16string* first = directory.firstServer();
    require((first == nullptr) == (directory.domainSid() == nullptr), "a domain without a server");
    std::vector<std::u16string> servers{u""};
    for (const std::u16string* each = first; each != nullptr; each = directory.serverBehind(*each)) {
        require(directory.hasServer(*each), "a server that is not found");
        servers.push_back(*each);
        require(servers.size() <= size, "the end of the servers");
    }
    std::size_t listed = 0;
    for (const std::u16string& server : servers) {
        for (const AccountKind kind : {AccountKind::kUser, AccountKind::kGroup}) {
            for (const Sid& sid : directory.accountsOf(server, kind)) {
                ++listed;
                const std::u16string* name = directory.nameOf(sid.bytes());
                require(name != nullptr, "an account without a name");
                const Sid* back = directory.sidOf(*name);
                require(back != nullptr && std::ranges::equal(back->bytes(), sid.bytes()),
                        "an account by its name");
                std::vector<Sid> users;
                require(directory.usersOfGroup(*name, users) == (kind == AccountKind::kGroup), "a group");
                require(users.size() <= directory.size(), "a member twice");
            }
        }
    }
    require(listed <= directory.size(), "an account twice");
    return 0;
}
