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
    std::vector<std::u16string> servers{u""};
    for (const auto* domain = directory.firstDomain(); domain != nullptr;
         domain = directory.domainBehind(domain->server))
    {
        require(directory.domainOf(domain->server) == domain, "a server that is not found");
        servers.push_back(domain->server);
        require(servers.size() <= size, "the end of the servers");
    }
    std::size_t listed = 0;
    for (const std::u16string& server : servers) {
        for (const AccountKind kind : {AccountKind::kUser, AccountKind::kGroup}) {
            for (const auto* account : directory.accountsOf(server, kind)) {
                ++listed;
                require(directory.find(account->sid.bytes()) == account, "an account by its SID");
                require(directory.find(account->name) == account, "an account by its name");
                const auto users = directory.usersOfGroup(account->name);
                require(users.empty() || kind == AccountKind::kGroup, "members of a user");
                require(users.size() <= directory.size(), "a member twice");
            }
        }
    }
    require(listed <= directory.size(), "an account twice");
    return 0;
}
