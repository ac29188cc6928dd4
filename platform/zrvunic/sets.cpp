// The sets that there are converters for.
#include <algorithm>
#include <iterator>

#include "sets.h"

namespace zrvunic {

namespace {

constexpr auto by_cid = [](const Set &set, UNICONV_CID cid) { return set.cid < cid; };

// In the order of their numbers. No public source has a mapping of 3000 to 3003, so they are not here.
constexpr Set sets[] = {
    {-5, Form::rcsu, 3, false, nullptr},         {-4, Form::utf8, 3, false, nullptr},
    {-1, Form::utf16, 2, false, nullptr},        {0, Form::one_byte, 1, false, nullptr},
    {1, Form::one_byte, 1, false, nullptr},      {2, Form::one_byte, 1, false, "cp850"},
    {3, Form::one_byte, 1, false, "cp437"},      {4, Form::one_byte, 1, false, "roman8"},
    {5, Form::one_byte, 1, false, "mac"},        {8, Form::multi_byte, 2, false, "deckanji"},
    {9, Form::multi_byte, 4, false, "euccns"},   {10, Form::multi_byte, 2, false, "eucgb"},
    {11, Form::multi_byte, 2, false, "cp932ms"}, {12, Form::one_byte, 1, false, "iso88592"},
    {13, Form::one_byte, 1, false, "iso88595"},  {14, Form::one_byte, 1, false, "iso88596"},
    {15, Form::one_byte, 1, false, "iso88597"},  {16, Form::one_byte, 1, false, "iso88598"},
    {17, Form::one_byte, 1, false, "iso88599"},  {18, Form::one_byte, 1, false, "iso10"},
    {19, Form::one_byte, 1, false, "iso88593"},  {20, Form::one_byte, 1, false, "iso88594"},
    {21, Form::one_byte, 1, false, "iso15"},     {26, Form::one_byte, 1, false, "mac_cyr"},
    {27, Form::one_byte, 1, false, "mac_ee"},    {28, Form::one_byte, 1, false, "macgreek"},
    {29, Form::one_byte, 1, false, "macturk"},   {30, Form::one_byte, 1, false, "greek8"},
    {31, Form::one_byte, 1, false, "turkish8"},  {32, Form::one_byte, 1, false, "koi8"},
    {33, Form::one_byte, 1, false, "tis620"},    {34, Form::multi_byte, 2, false, "big5"},
    {36, Form::multi_byte, 2, false, "eucksc"},  {37, Form::one_byte, 1, true, "cp037"},
    {41, Form::one_byte, 1, false, "macthai"},   {42, Form::one_byte, 1, false, "iso13"},
    {43, Form::one_byte, 1, false, "iso14"},     {44, Form::one_byte, 1, false, "roman9"},
    {45, Form::one_byte, 1, false, "mac_euro"},  {46, Form::one_byte, 1, false, "cp874ibm"},
    {47, Form::multi_byte, 2, false, "big5hk"},  {48, Form::gb18030, 4, false, "gb18030"},
    {49, Form::multi_byte, 3, false, "eucjis"},  {50, Form::multi_byte, 2, false, "sjis"},
    {54, Form::one_byte, 1, false, "kz1048"},    {273, Form::one_byte, 1, true, "cp273"},
    {277, Form::one_byte, 1, true, "cp277"},     {278, Form::one_byte, 1, true, "cp278"},
    {280, Form::one_byte, 1, true, "cp280"},     {284, Form::one_byte, 1, true, "cp284"},
    {285, Form::one_byte, 1, true, "cp285"},     {290, Form::one_byte, 1, true, "cp290"},
    {297, Form::one_byte, 1, true, "cp297"},     {420, Form::one_byte, 1, true, "cp420"},
    {424, Form::one_byte, 1, true, "cp424"},     {500, Form::one_byte, 1, true, "cp500"},
    {737, Form::one_byte, 1, false, "cp737"},    {775, Form::one_byte, 1, false, "cp775"},
    {852, Form::one_byte, 1, false, "cp852"},    {855, Form::one_byte, 1, false, "cp855"},
    {856, Form::one_byte, 1, false, "cp856"},    {857, Form::one_byte, 1, false, "cp857"},
    {858, Form::one_byte, 1, false, "cp858"},    {860, Form::one_byte, 1, false, "cp860"},
    {861, Form::one_byte, 1, false, "cp861"},    {862, Form::one_byte, 1, false, "cp862"},
    {863, Form::one_byte, 1, false, "cp863"},    {864, Form::one_byte, 1, false, "cp864"},
    {865, Form::one_byte, 1, false, "cp865"},    {866, Form::one_byte, 1, false, "cp866"},
    {869, Form::one_byte, 1, false, "cp869"},    {870, Form::one_byte, 1, true, "cp870"},
    {871, Form::one_byte, 1, true, "cp871v1"},   {874, Form::one_byte, 1, false, "cp874"},
    {875, Form::one_byte, 1, true, "cp875"},     {921, Form::one_byte, 1, false, "cp921"},
    {923, Form::one_byte, 1, false, "cp923"},    {930, Form::shifted, 4, true, "cp930"},
    {932, Form::multi_byte, 2, false, "cp932"},  {933, Form::shifted, 4, true, "cp933"},
    {935, Form::shifted, 4, true, "cp935"},      {936, Form::multi_byte, 2, false, "cp936"},
    {937, Form::shifted, 4, true, "cp937"},      {939, Form::shifted, 4, true, "cp939"},
    {949, Form::multi_byte, 2, false, "cp949"},  {950, Form::multi_byte, 2, false, "cp950"},
    {954, Form::multi_byte, 3, false, "cp954"},  {1006, Form::one_byte, 1, false, "cp1006"},
    {1026, Form::one_byte, 1, true, "cp1026"},   {1047, Form::one_byte, 1, true, "cp1047"},
    {1140, Form::one_byte, 1, true, "cp1140"},   {1141, Form::one_byte, 1, true, "cp1141"},
    {1142, Form::one_byte, 1, true, "cp1142"},   {1143, Form::one_byte, 1, true, "cp1143"},
    {1144, Form::one_byte, 1, true, "cp1144"},   {1145, Form::one_byte, 1, true, "cp1145"},
    {1146, Form::one_byte, 1, true, "cp1146"},   {1147, Form::one_byte, 1, true, "cp1147"},
    {1148, Form::one_byte, 1, true, "cp1148"},   {1149, Form::one_byte, 1, true, "cp1149"},
    {1250, Form::one_byte, 1, false, "cp1250"},  {1251, Form::one_byte, 1, false, "cp1251"},
    {1252, Form::one_byte, 1, false, "cp1252"},  {1253, Form::one_byte, 1, false, "cp1253"},
    {1254, Form::one_byte, 1, false, "cp1254"},  {1255, Form::one_byte, 1, false, "cp1255"},
    {1256, Form::one_byte, 1, false, "cp1256"},  {1257, Form::one_byte, 1, false, "cp1257"},
    {1258, Form::one_byte, 1, false, "cp1258"},  {5026, Form::shifted, 4, true, "cp5026"},
    {5035, Form::shifted, 4, true, "cp5035"},
};

static_assert(std::is_sorted(std::begin(sets), std::end(sets),
                             [](const Set &a, const Set &b) { return a.cid < b.cid; }));

} // namespace

const Set *find_set(UNICONV_CID cid) noexcept {
  const Set *const found = std::lower_bound(std::begin(sets), std::end(sets), cid, by_cid);
  return found != std::end(sets) && found->cid == cid ? found : nullptr;
}

} // namespace zrvunic
