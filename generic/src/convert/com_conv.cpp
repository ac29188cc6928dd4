// Conversion dispatch: a context's private copy of the matrix, and the conversions that users add
// for their own types.
#include <cstring>

#include "builtin.h"
#include "checks.h"
#include "types.h"
#include "zrvintl.h"

namespace {

constexpr size_t matrix_cells = size_t{CS_TYPE_COUNT} * CS_TYPE_COUNT;

// Where the search for a user conversion ended. Without a record, the new one belongs into `link`.
struct UserSearch {
  CsUsrCvtFunc *record;
  CsUsrCvtFunc **link;
};

UserSearch find_user_conversion(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype) noexcept {
  CsUsrCvtFunc **link = &context->ctxusrcvttbl;
  while (*link != nullptr && (*link)->srctype != srctype)
    link = &(*link)->nextsrc;
  while (*link != nullptr && (*link)->desttype != desttype)
    link = &(*link)->nextdest;
  return {*link, link};
}

// What com_conv_func does when the answer is no cell of the matrix.
[[gnu::noinline]] CS_CONV_FUNC find_beyond_matrix(CS_CONTEXT *context, CS_INT srctype,
                                                  CS_INT desttype) noexcept {
  if (srctype < 0 || desttype < 0)
    return nullptr;
  COMN_CHECK_PTR(context, nullptr);
  if (comn::is_builtin(srctype) && comn::is_builtin(desttype))
    COMN_CHECK_PTR(context->ctxcvttbl.cvttbl, nullptr);
  return com__conv_usr_func(context, srctype, desttype);
}

} // namespace

void com__get_ctbl(CS_CONV_FUNC **cvt_array, int *cvt_dim) noexcept {
  COMN_CHECK_PTR(cvt_array);
  COMN_CHECK_PTR(cvt_dim);
  *cvt_array = const_cast<CS_CONV_FUNC *>(Com__cnvrt_array[0]);
  *cvt_dim = CS_TYPE_COUNT;
}

CS_RETCODE com_conv_init(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  // The context may come from anywhere: nothing is read, and com_conv_free must find an empty list
  // also after a failure.
  context->ctxusrcvttbl = nullptr;
  CsConvertTbl &table = context->ctxcvttbl;
  constexpr size_t bytes = matrix_cells * sizeof(CS_CONV_FUNC);
  table.cvttbl = static_cast<CS_CONV_FUNC *>(comn_malloc(bytes));
  if (table.cvttbl == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  std::memcpy(table.cvttbl, own_Com__cnvrt_array, bytes);
  table.cvtdim = CS_TYPE_COUNT;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_conv_free(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  comn_free(context->ctxcvttbl.cvttbl);
  context->ctxcvttbl = {};
  return COMN_TRACE(com__conv_usr_free(context));
}

CS_RETCODE com__conv_usr_free(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  for (CsUsrCvtFunc *source = context->ctxusrcvttbl; source != nullptr;) {
    CsUsrCvtFunc *const next_source = source->nextsrc;
    for (CsUsrCvtFunc *record = source; record != nullptr;) {
      CsUsrCvtFunc *const next_record = record->nextdest;
      comn_free(record);
      record = next_record;
    }
    source = next_source;
  }
  context->ctxusrcvttbl = nullptr;
  return CS_SUCCEED;
}

CS_CONV_FUNC com_conv_func(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype) noexcept {
  if (context != nullptr && comn::is_builtin(srctype) && comn::is_builtin(desttype)) [[likely]] {
    const CsConvertTbl &table = context->ctxcvttbl;
    if (table.cvttbl != nullptr) [[likely]]
      return table.cvttbl[table.cvtdim * srctype + desttype];
  }
  return find_beyond_matrix(context, srctype, desttype);
}

CsUsrCvtFunc *com__conv_usr_struct(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype) noexcept {
  COMN_CHECK_PTR(context, nullptr);
  return find_user_conversion(context, srctype, desttype).record;
}

CS_CONV_FUNC com__conv_usr_func(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype) noexcept {
  const CsUsrCvtFunc *record = com__conv_usr_struct(context, srctype, desttype);
  return record != nullptr ? record->cvtfunc : nullptr;
}

CS_RETCODE com__conv_usr_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                                 CS_CONV_FUNC newfunc) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  auto [record, link] = find_user_conversion(context, srctype, desttype);
  if (record == nullptr) {
    record = static_cast<CsUsrCvtFunc *>(comn_malloc(sizeof *record));
    if (record == nullptr)
      return CS_MEM_ERROR;
    *record = {};
    record->srctype = srctype;
    record->desttype = desttype;
    *link = record;
  }
  record->cvtfunc = newfunc;
  return CS_SUCCEED;
}

CS_RETCODE com_conv_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                            CS_CONV_FUNC newfunc) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  const CsConvertTbl &table = context->ctxcvttbl;
  COMN_CHECK_PTR(table.cvttbl, COMN_TRACE(CS_FAIL));
  if (srctype >= comn::datatype_count || desttype >= comn::datatype_count)
    return COMN_TRACE(com__conv_usr_install(context, srctype, desttype, newfunc));

  // The codes are not tested one by one, so that 1 and -1 name the last cell of row 0. What lies
  // outside the matrix is never written.
  const auto cell = static_cast<long long>(table.cvtdim) * srctype + desttype;
  COMN_CHECK(cell >= 0 && cell < static_cast<long long>(matrix_cells), COMN_TRACE(CS_FAIL));
  table.cvttbl[cell] = newfunc;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_conv_default(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK(srctype >= 0 && desttype >= 0, COMN_TRACE(CS_FAIL));
  if (comn::is_builtin(srctype) && comn::is_builtin(desttype))
    return COMN_TRACE(
        com_conv_install(context, srctype, desttype, own_Com__cnvrt_array[srctype][desttype]));
  // The record stays on the list and answers null, so that a later install finds it again.
  if (CsUsrCvtFunc *record = com__conv_usr_struct(context, srctype, desttype))
    record->cvtfunc = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}
