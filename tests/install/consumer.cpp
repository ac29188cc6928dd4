// A client in C++20: the same conversion, and where the installation lives.
#include <array>
#include <cstdio>

#include <zrvcomn/comnlib.h>
#include <zrvcomn/zrvintl.h>

int main() {
  CS_CONTEXT context{};
  if (com_conv_init(&context) != CS_SUCCEED)
    return 1;
  CS_INT value = 12345;
  CS_INT length = 0;
  std::array<char, 12> text{};
  CS_DATAFMT from{};
  from.datatype = CS_TYPE_INT;
  from.maxlength = sizeof value;
  CS_DATAFMT to{};
  to.datatype = CS_TYPE_CHAR;
  to.maxlength = text.size();
  const CS_CONV_FUNC convert = com_conv_func(&context, CS_TYPE_INT, CS_TYPE_CHAR);
  if (convert(&context, &from, &value, &to, text.data(), &length) != CS_SUCCEED)
    return 1;
  std::array<char, 4096> home{};
  if (intl_home(home.data(), home.size()) < 1)
    return 1;
  std::printf("%.*s\n%s\n", static_cast<int>(length), text.data(), home.data());
  return com_conv_free(&context) == CS_SUCCEED ? 0 : 1;
}
