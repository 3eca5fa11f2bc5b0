// The HTTP client: file upload as a multipart POST, and list download.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Uploads the file at filePath to url on port; reports nothing back.
void runHTTPclient(const PMString& url, int port, const PMString& filePath, const PMString& filePathValue,
                   const PMString& fileName);
// Fetches url from port; result receives the raw answer, headers included.
void GetClientList(const PMString& url, int port, WideString& result);

}  // namespace talp
