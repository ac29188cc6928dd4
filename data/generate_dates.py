#!/usr/bin/env python3
"""Writes common.loc of each language, its names of months and days and how it writes dates, from the
public locale data (Debian's unicode-cldr-core).

    data/generate_dates.py home/locales/message

The names are those that stand in a date. They have to fit: full month names into 20 bytes of UTF-8, short
ones into 9, day names into 30.
  - The one full name of a language that does not fit gives way to its short form; where several do not,
    all give way.
  - Where a short name does not fit, all of the language lose their points, and then each what is too much
    at its end.
The first day of the week and the clock are those of a country.
"""

import argparse
import re
import sys
import unicodedata
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from generate_messages import write_files

# For each language its data, from the special to the general, and the country.
SOURCES = {
    "us_english": ("en", "US"),
    "uk_english": ("en_GB en_001 en", "GB"),
    "german": ("de", "DE"),
    "french": ("fr", "FR"),
    "spanish": ("es", "ES"),
    "italian": ("it", "IT"),
    "portuguese": ("pt_PT pt", "PT"),
    "brazilian": ("pt", "BR"),
    "dutch": ("nl", "NL"),
    "danish": ("da", "DK"),
    "norwegian": ("no", "NO"),
    "swedish": ("sv", "SE"),
    "finnish": ("fi", "FI"),
    "icelandic": ("is", "IS"),
    "polish": ("pl", "PL"),
    "czech": ("cs", "CZ"),
    "slovak": ("sk", "SK"),
    "hungarian": ("hu", "HU"),
    "slovenian": ("sl", "SI"),
    "croatian": ("hr", "HR"),
    "serbian": ("sr", "RS"),
    "romanian": ("ro", "RO"),
    "bulgarian": ("bg", "BG"),
    "greek": ("el", "GR"),
    "turkish": ("tr", "TR"),
    "russian": ("ru", "RU"),
    "ukrainian": ("uk", "UA"),
    "estonian": ("et", "EE"),
    "latvian": ("lv", "LV"),
    "lithuanian": ("lt", "LT"),
    "hebrew": ("he", "IL"),
    "arabic": ("ar", "EG"),
    "persian": ("fa", "IR"),
    "hindi": ("hi", "IN"),
    "thai": ("th", "TH"),
    "vietnamese": ("vi", "VN"),
    "indonesian": ("id", "ID"),
    "malay": ("ms", "MY"),
    "korean": ("ko", "KR"),
    "japanese": ("ja", "JP"),
    "simplified_chinese": ("zh", "CN"),
    "traditional_chinese": ("zh_Hant", "TW"),
    "kazakh": ("kk", "KZ"),
}

CLDR = Path("/usr/share/unicode/cldr/common")
DAYS = ("mon", "tue", "wed", "thu", "fri", "sat", "sun")
INHERITED = "↑↑↑"
# Bytes of each name in intl_dateinfo, without its terminator.
LONGEST_MONTH, LONGEST_SHORT_MONTH, LONGEST_DAY = 20, 9, 30


def version(cldr):
    return re.search(r'cldrVersion CDATA #FIXED "([0-9.]+)"', (cldr / "dtd/ldml.dtd").read_text())[1]


def fits(text, longest):
    return len(text.encode()) <= longest


def shorten(names, longest):
    """Short names without their points, and each without what is too much at its end."""
    if all(fits(name, longest) for name in names):
        return names
    names = [re.sub("[.॰]", "", name) for name in names]
    return [cut(name, longest) for name in names]


def cut(text, longest):
    while not fits(text, longest) or unicodedata.name(text[-1]).endswith("VIRAMA"):
        text = text[:-1]
    return text


def fit_names(names, short, longest):
    """Full names, and short ones for those that do not fit."""
    misfits = [index for index, name in enumerate(names) if not fits(name, longest)]
    short = shorten(short, longest)
    if len(misfits) > 1:
        return short
    return [short[index] if index in misfits else name for index, name in enumerate(names)]


class Data:
    """The locale data of one language."""

    def __init__(self, cldr, names):
        self.calendars = [
            ElementTree.parse(cldr / f"main/{name}.xml").find("dates/calendars/calendar[@type='gregorian']")
            for name in names.split()]

    def find(self, path):
        """The text at a path, of the most special source that has one of its own."""
        for calendar in self.calendars:
            found = calendar.find(path)
            if found is not None and found.text and found.text != INHERITED:
                return found.text
        return None

    def names(self, kind, keys, *widths):
        """One name for each key, of the first of the widths that there is."""
        names = []
        for key in keys:
            paths = (f"{kind}s/{kind}Context[@type='format']/{kind}Width[@type='{width}']/{kind}[@type='{key}']"
                     for width in widths)
            names.append(next(filter(None, map(self.find, paths))))
        return names

    def date_order(self):
        pattern = self.find("dateFormats/dateFormatLength[@type='short']/dateFormat/pattern")
        return "".join(dict.fromkeys(re.sub("[^ymd]", "", pattern.lower())))


class Countries:
    def __init__(self, cldr):
        data = ElementTree.parse(cldr / "supplemental/supplementalData.xml").getroot()
        self.first_days, self.clocks = {}, {}
        for row in data.findall("weekData/firstDay"):
            if "alt" not in row.attrib:
                self.first_days.update(dict.fromkeys(row.get("territories").split(), row.get("day")))
        for row in data.findall("timeData/hours"):
            self.clocks.update(dict.fromkeys(row.get("regions").split(), row.get("preferred")))

    def first_day(self, country):
        return DAYS.index(self.first_days.get(country, self.first_days["001"])) + 1

    def is_12_hour(self, country):
        return self.clocks.get(country, self.clocks["001"])[0] in "hK"


def listed(names):
    return ", ".join(f'"{name}"' for name in names)


class Dates:
    def __init__(self, cldr):
        self.cldr = cldr
        self.version = version(cldr)
        self.countries = Countries(cldr)

    def file_of(self, language):
        names, country = SOURCES[language]
        data = Data(self.cldr, names)
        numbers = range(1, 13)
        short_months = data.names("month", numbers, "abbreviated", "wide")
        months = fit_names(data.names("month", numbers, "wide"), short_months, LONGEST_MONTH)
        short_months = shorten(short_months, LONGEST_SHORT_MONTH)
        short_days = data.names("day", DAYS, "abbreviated", "wide")
        days = fit_names(data.names("day", DAYS, "wide"), short_days, LONGEST_DAY)
        if len(set(months)) < 12 or len(set(short_months)) < 12 or len(set(days)) < 7:
            sys.exit(f"{language}: two names are the same")
        return (f"; Generated by data/generate_dates.py from CLDR {self.version}: {names}, {country}.\n"
                "\n[datetime]\n"
                f"months = {listed(months)}\n"
                f"shortmonths = {listed(short_months)}\n"
                f"days = {listed(days)}\n"
                f"firstday = {self.countries.first_day(country)}\n"
                f"dateorder = {data.date_order()}\n"
                f"is12hour = {'true' if self.countries.is_12_hour(country) else 'false'}\n")


def main():
    parser = argparse.ArgumentParser(description="Write common.loc of each language.")
    parser.add_argument("--cldr", metavar="FOLDER", type=Path, help="the locale data", default=CLDR)
    parser.add_argument("folder", help="where the directories of the languages are")
    arguments = parser.parse_args()
    write_files(arguments.folder, "common.loc", Dates(arguments.cldr).file_of)


if __name__ == "__main__":
    main()
