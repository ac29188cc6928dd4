// What is parsed once for all tests, to save time alone: a test still includes whatever it uses.
#ifndef ZRVTEST_PRECOMPILED_H
#define ZRVTEST_PRECOMPILED_H

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#endif
