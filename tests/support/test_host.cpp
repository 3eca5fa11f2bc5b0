#include "test_host.h"
