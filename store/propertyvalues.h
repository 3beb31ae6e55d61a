// How a property's value is named, sized and shown: one form for viewer, find, wizard and export.
#pragma once

#include "platform/objectstore.h"

// Room for the text of any value but a string.
constexpr int kValueTextCapacity = 260;
constexpr int kLabelCapacity = 32;

// Decimal places of floating values everywhere in the program.
constexpr int kFloatPlaces = 5;

// "INT", "TEXT" ...; null for a type that is not known, which lists leave out.
const WCHAR* TypeListName(WORD type);
// The fixed width of scalars, the characters of a text, the bytes of a blob.
void TypeSizeText(const CEPROPVAL& property, WCHAR (&text)[kLabelCapacity]);
// "Long (5)" for a sort order by property 5.
void SortMenuLabel(CEPROPID property, WCHAR (&text)[kLabelCapacity]);

// The text form of a value: `buffer`, or the property's own string ("" when it is absent).
const WCHAR* FormatPropertyText(const CEPROPVAL& property, WCHAR (&buffer)[kValueTextCapacity]);

// The display form of a floating value, rounded to `places` after the point: "12.5", "3.", "0." for zero,
// "1.234e+014" when the fixed form would take more than twelve characters. Quirk: the exponent
// form ends before the first zero digit, so that the digits 105 become 1.0 there.
void FormatFloatText(double value, int places, WCHAR (&text)[kValueTextCapacity]);
