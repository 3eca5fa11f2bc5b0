// Not built yet: nothing is sent and the result is left untouched.
#include "http/http_client.h"

namespace talp {

void runHTTPclient(const PMString&, int, const PMString&, const PMString&, const PMString&) {}
void GetClientList(const PMString&, int, WideString&) {}

}  // namespace talp
