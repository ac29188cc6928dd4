/*
 * cserror.h - return codes.
 *
 * Nearly every operation returns a CS_RETCODE: CS_SUCCEED is 1, CS_FAIL is 0, everything else that
 * went wrong is negative.
 */
#ifndef ZRV_CSERROR_H
#define ZRV_CSERROR_H

#include "cstypes.h"

ZRV_BEGIN_DECLS

/* The general codes, which com_errtrace prints by name. */
#define CS_SUCCEED 1
#define CS_FAIL 0
#define CS_MEM_ERROR (-1) /* an allocation failed */
#define CS_PENDING (-2)
#define CS_QUIET (-3)
#define CS_BUSY (-4)
#define CS_INTERRUPT (-5)
#define CS_CANCELED (-202)
#define CS_ROW_FAIL (-203)
#define CS_END_DATA (-204)
#define CS_END_RESULTS (-205)
#define CS_END_ITEM (-206)
#define CS_NOMSG (-207)
#define CS_TIMED_OUT (-208)
#define CS_PASSTHRU_EOM (-210)
#define CS_PASSTHRU_MORE (-211)
#define CS_TRYING (-213)

/* The statuses of conversions and arithmetic. A status other than CS_SUCCEED may come with a usable
 * result: narrowing conversions store the nearest value first. */
#define CS_CONV_OVERFLOW (-101)     /* too large for the destination, or a text did not fit */
#define CS_CONV_UNDERFLOW (-102)    /* below what the destination holds, or too few source bytes */
#define CS_CONV_BADPRECISION (-103) /* destination precision outside 1 to 77 */
#define CS_CONV_BADSCALE (-104)     /* destination scale above 77 */
#define CS_CONV_SYNTAX (-105)       /* text that does not parse */
#define CS_CONV_PADCONFLICT (-106)  /* both pad bits are set in `format` */
#define CS_CONV_DOMAIN (-107)       /* a source value that its own type does not allow */
#define CS_CONV_DIVZERO (-108)      /* division by zero */
#define CS_CONV_TRUNCATED (-113)    /* the result was cut to the room available */
#define CS_CONV_DATEBUFFER (-114)   /* the date formatter failed */
#define CS_CONV_BADCHAR (-115)      /* a character that the source encoding does not allow */
#define CS_CONV_NOXLATE (-116)      /* no translation between the two character sets */
#define CS_CONV_PARTIAL (-117)      /* the converter stopped short; callers treat it as a success */

/* Failures of localisation. */
#define COM_INTL_ERROR (-301)    /* the section reader failed; its status is in ctxintlerr */
#define COM_LOCFILE_ERROR (-414) /* an installation file cannot be opened */
#define COM_UNKNOWN_NAME (-417)  /* a locale name is not known */

/* One row of the table of printable names. */
typedef struct _comerrstring {
  CS_RETCODE errcode;
  const CS_CHAR *errstr;
} ComErrString;

ZRV_END_DECLS

#endif
