#include "frame/domain_servers.h"

#include "frame/format_text.h"

wchar_t lastDomainServer[kServerNameCapacity];
wchar_t lastDomainServer2[kServerNameCapacity];

void setLastDomainServers(const wchar_t* server, const wchar_t* server2)
{
    formatText(lastDomainServer, L"%ls", server);
    formatText(lastDomainServer2, L"%ls", server2);
}
