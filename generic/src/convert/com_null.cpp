// Default values: what a conversion from the void type delivers, and so what stands for NULL.
#include <algorithm>
#include <cstring>

#include "builtin.h"
#include "conv_func.h"
#include "number.h"
#include "pad.h"
#include "zrvintl.h"

namespace {

// A copy of `size` bytes in a new block. A size of 0 gives a block of one byte if `empty_block`,
// else null. False when the allocation failed.
bool copy_bytes(CS_VOID **copy, const CS_VOID *bytes, CS_INT size, bool empty_block) noexcept {
  *copy = nullptr;
  if (size == 0 && !empty_block)
    return true;
  *copy = comn_malloc(static_cast<size_t>(std::max<CS_INT>(size, 1)));
  if (*copy == nullptr)
    return false;
  std::memcpy(*copy, bytes, static_cast<size_t>(size));
  return true;
}

CsUsrNull **find_user_default(CS_CONTEXT *context, CS_INT type) noexcept {
  CsUsrNull **link = &context->ctxusrnulls;
  while (*link != nullptr && (*link)->dttype != type)
    link = &(*link)->nextnull;
  return link;
}

void free_values(CsNullTbl &table) noexcept {
  if (table.nullvals != nullptr)
    for (int row = 0; row < CS_TYPE_COUNT; ++row)
      comn_free(table.nullvals[row].dventity);
  comn_free(table.nullvals);
  table = {};
}

} // namespace

CS_RETCODE com_null_init(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  // The context may come from anywhere: nothing is read, and com_null_free must find what it can
  // release also after a failure.
  context->ctxusrnulls = nullptr;
  CsNullTbl &table = context->ctxnulls;
  table.nulldim = CS_TYPE_COUNT;
  table.nullvals = static_cast<CsDefVal *>(comn_calloc(CS_TYPE_COUNT, sizeof(CsDefVal)));
  if (table.nullvals == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  for (int row = 0; row < CS_TYPE_COUNT; ++row) {
    CsDefVal &value = table.nullvals[row];
    value = own_Comv_values[row];
    if (!copy_bytes(&value.dventity, own_Comv_values[row].dventity, value.dvsize, true))
      return COMN_TRACE(CS_MEM_ERROR);
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_null_free(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  free_values(context->ctxnulls);
  return COMN_TRACE(com__null_usr_free(context));
}

CS_RETCODE com_null_get(CS_CONTEXT *context, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT destlen,
                        CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destfmt, COMN_TRACE(CS_FAIL));
  const CS_INT type = destfmt->datatype;
  if (type >= comn::datatype_count)
    return COMN_TRACE(com__null_usr_get(context, destfmt, dest, destlen, outlen));
  COMN_CHECK(type >= 0, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxnulls.nullvals, COMN_TRACE(CS_FAIL));
  const CsDefVal &value = context->ctxnulls.nullvals[type];
  COMN_CHECK_PTR(value.dventity, COMN_TRACE(CS_FAIL));

  const CS_INT room = std::max<CS_INT>(destlen, 0);
  CS_INT length = value.dvsize;
  if (comn::numeric_types.contains(type) && comn::exact::is_precision(destfmt->precision))
    length = own_Com__Nume_Prec_To_Len[destfmt->precision] + 2;
  length = std::min(length, room);
  *outlen = length;
  // A default that a user made shorter than the numeric it stands for ends in zeroes.
  const CS_INT held = std::min(length, value.dvsize);
  std::memcpy(dest, value.dventity, static_cast<size_t>(held));
  std::memset(static_cast<CS_BYTE *>(dest) + held, 0, static_cast<size_t>(length - held));

  // Deliberate: `destlen` cuts the copy alone, and the pads go on to the end of the format's room.
  const CS_INT capacity = destfmt->maxlength;
  const CS_INT format = destfmt->format;
  switch (value.dvpadtype) {
  case COM_PAD_BIN:
    return COMN_TRACE(comn::pad_binary(length, format, capacity, dest, outlen));
  case COM_PAD_CHAR:
    return COMN_TRACE(comn::pad_text(length, format, capacity, dest, outlen));
  case COM_PAD_UNICHAR:
    return COMN_TRACE(comn::pad_unitext(length, format, capacity, dest, outlen));
  default:
    break;
  }
  if (comn::numeric_types.contains(type)) {
    auto *bytes = static_cast<CS_BYTE *>(dest);
    if (room > 0)
      bytes[0] = static_cast<CS_BYTE>(destfmt->precision);
    if (room > 1)
      bytes[1] = static_cast<CS_BYTE>(destfmt->scale);
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_null_set(CS_CONTEXT *context, CS_INT nulltype, CS_VOID *null,
                        CS_INT nulllen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(null, COMN_TRACE(CS_FAIL));
  COMN_CHECK(nulllen >= 0, COMN_TRACE(CS_FAIL));
  COMN_CHECK(nulltype >= 0, COMN_TRACE(CS_FAIL));
  if (nulltype >= comn::datatype_count)
    return COMN_TRACE(com__null_usr_set(context, nulltype, null, nulllen));
  COMN_CHECK_PTR(context->ctxnulls.nullvals, COMN_TRACE(CS_FAIL));

  // Deliberate: length 0 leaves the row without bytes, and the next use of it ends the process.
  CS_VOID *copy;
  if (!copy_bytes(&copy, null, nulllen, false))
    return COMN_TRACE(CS_MEM_ERROR);
  CsDefVal &value = context->ctxnulls.nullvals[nulltype];
  comn_free(value.dventity);
  value.dventity = copy;
  value.dvsize = nulllen;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_null_reinstall(CS_CONTEXT *context, CS_INT nulltype) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK(nulltype >= 0, COMN_TRACE(CS_FAIL));
  if (nulltype >= comn::datatype_count)
    return COMN_TRACE(com__null_usr_reinstall(context, nulltype));
  COMN_CHECK_PTR(context->ctxnulls.nullvals, COMN_TRACE(CS_FAIL));
  CsDefVal &value = context->ctxnulls.nullvals[nulltype];
  COMN_CHECK_PTR(value.dventity, COMN_TRACE(CS_FAIL));

  const CsDefVal &original = own_Comv_values[nulltype];
  value.dvpadtype = original.dvpadtype;
  // A larger block is used again as it is.
  if (value.dvsize < original.dvsize) {
    CS_VOID *block = comn_realloc(value.dventity, static_cast<size_t>(original.dvsize));
    if (block == nullptr)
      return COMN_TRACE(CS_MEM_ERROR);
    value.dventity = block;
  }
  std::memcpy(value.dventity, original.dventity, static_cast<size_t>(original.dvsize));
  value.dvsize = original.dvsize;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com__null_usr_get(CS_CONTEXT *context, CS_DATAFMT *destfmt, CS_VOID *dest,
                             CS_INT destlen, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  COMN_CHECK_PTR(outlen, CS_FAIL);
  COMN_CHECK_PTR(destfmt, CS_FAIL);
  *outlen = 0;
  const CsUsrNull *record = *find_user_default(context, destfmt->datatype);
  if (record == nullptr)
    return CS_SUCCEED;
  const CS_INT length = std::min(record->dvsize, std::max<CS_INT>(destlen, 0));
  auto *bytes = static_cast<CS_BYTE *>(dest);
  if (length > 0)
    std::memcpy(bytes, record->dventity, static_cast<size_t>(length));
  // Deliberate: the terminator is written, and counted, also when the value filled `destlen`.
  bytes[length] = 0;
  *outlen = length + 1;
  return CS_SUCCEED;
}

CS_RETCODE com__null_usr_set(CS_CONTEXT *context, CS_INT nulltype, CS_VOID *null,
                             CS_INT nulllen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(null, CS_FAIL);
  COMN_CHECK(nulllen >= 0, CS_FAIL);
  CS_VOID *copy;
  if (!copy_bytes(&copy, null, nulllen, false))
    return CS_MEM_ERROR;
  CsUsrNull *record = *find_user_default(context, nulltype);
  if (record == nullptr) {
    record = static_cast<CsUsrNull *>(comn_malloc(sizeof *record));
    if (record == nullptr) {
      comn_free(copy);
      return CS_MEM_ERROR;
    }
    *record = {nulltype, nullptr, 0, context->ctxusrnulls};
    context->ctxusrnulls = record;
  }
  comn_free(record->dventity);
  record->dventity = copy;
  record->dvsize = nulllen;
  return CS_SUCCEED;
}

CS_RETCODE com__null_usr_reinstall(CS_CONTEXT *context, CS_INT nulltype) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  CsUsrNull **link = find_user_default(context, nulltype);
  if (CsUsrNull *record = *link) {
    *link = record->nextnull;
    comn_free(record->dventity);
    comn_free(record);
  }
  return CS_SUCCEED;
}

CS_RETCODE com__null_usr_free(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  while (CsUsrNull *record = context->ctxusrnulls) {
    context->ctxusrnulls = record->nextnull;
    comn_free(record->dventity);
    comn_free(record);
  }
  return CS_SUCCEED;
}

CS_RETCODE comn_voidtoany(CS_CONTEXT *context, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *destfmt,
                          CS_VOID *dest, CS_INT *destlen) noexcept {
  COMN_CHECK_PTR(destfmt, COMN_TRACE(CS_FAIL));
  const CS_INT length = comn_typelen(destfmt->datatype, destfmt->maxlength);
  return COMN_TRACE(com_null_get(context, destfmt, dest, length, destlen));
}

CS_RETCODE comn_voidtovoid(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *,
                           CS_INT *) noexcept {
  return COMN_TRACE(CS_SUCCEED);
}
