// The English names and the date conventions that serve where no locale does.
#include "calendar.h"

// The names are handed out as the arrays of a locale are, without const; nobody writes them.
#define NAME(text) const_cast<CS_CHAR *>(text)

COMN_DEFINE_TABLE(Com__Months) = {NAME("January"), NAME("February"), NAME("March"),
                                  NAME("April"),   NAME("May"),      NAME("June"),
                                  NAME("July"),    NAME("August"),   NAME("September"),
                                  NAME("October"), NAME("November"), NAME("December")};
COMN_DEFINE_TABLE(Com__Shortmonths) = {NAME("Jan"), NAME("Feb"), NAME("Mar"), NAME("Apr"),
                                       NAME("May"), NAME("Jun"), NAME("Jul"), NAME("Aug"),
                                       NAME("Sep"), NAME("Oct"), NAME("Nov"), NAME("Dec")};
CS_CHAR *const Com__WeekDay[] = {NAME("Sunday"),    NAME("Monday"),   NAME("Tuesday"),
                                 NAME("Wednesday"), NAME("Thursday"), NAME("Friday"),
                                 NAME("Saturday")};
CS_CHAR *const Com__Days[] = {NAME("Sun"), NAME("Mon"), NAME("Tue"), NAME("Wed"),
                              NAME("Thu"), NAME("Fri"), NAME("Sat")};
COMN_DEFINE_TABLE(Com__ampm) = {NAME("AM"), NAME("PM")};
COMN_DEFINE_TABLE(Com__Firstday) = 7;
const CS_CHAR Com__date_order[] = "mdy";
COMN_DEFINE_TABLE(Com__date_order_id) = 1;

#undef NAME

CS_CHAR **com__get_months() noexcept {
  return const_cast<CS_CHAR **>(Com__Months);
}

CS_CHAR **com__get_shortmonths() noexcept {
  return const_cast<CS_CHAR **>(Com__Shortmonths);
}

CS_CHAR **com__get_days() noexcept {
  return const_cast<CS_CHAR **>(Com__Days);
}

CS_INT com__get_firstday() noexcept {
  return own_Com__Firstday;
}

CS_CHAR *com__get_date_order() noexcept {
  return const_cast<CS_CHAR *>(Com__date_order);
}

int com__get_date_order_id() noexcept {
  return own_Com__date_order_id;
}
