#include "frame/domain_servers.h"

wchar_t lastDomainServer[kServerNameCapacity];
wchar_t lastDomainServer2[kServerNameCapacity];
