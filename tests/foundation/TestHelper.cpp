#include "TestSupport.h"
TEST (Placeholder, Builds) { SUCCEED (); }
