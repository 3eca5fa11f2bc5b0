// Conditional strings. A conditional is written between "<EXIF>" and
// "</EXIF>"; its body reads 'left'OP'right','then','else' and may hold
// further conditionals, which are evaluated first. Both functions are pure
// text transformations and may run on different texts at once.
#pragma once

#include "talp/wide_string.h"

namespace talp {

// Replaces body, one conditional without nested ones, outer quotes included,
// by the text it chooses. Typographic single quotes count as apostrophes.
// The operator is the first of "'=='", "'!='", "'>'", "'<'", "'>='", "'<='"
// that occurs anywhere in body, so a quoted operator inside a value or a
// text can win over the one meant; with none, body becomes empty. Values are
// compared by code points, never as numbers; '>' is true when left sorts
// before right and '<' when it sorts after, reversed as callers expect. A
// left value that is the single character U+FEFF stands for anything: '=='
// is true and every other operator false.
void HandleOneLevelIfString(WideString& body);

// Evaluates text as a conditional's body, that is what lies between its
// outer tags, so a text without "<EXIF>" is one body. Every conditional in
// text is first replaced by its value, inner ones before outer ones; the
// result is then evaluated with HandleOneLevelIfString.
//
// An "<EXIF>" is closed by the "</EXIF" at which the two tags have occurred
// equally often since it, counted in the text as written; the character
// after that "</EXIF", normally ">", goes with the tag whatever it is.
// Conditionals are replaced in one pass from left to right: the scan goes on
// behind each value and never reads it again, so tags that a value forms
// with the text around it stay plain text. Tags that pair with nothing are
// plain text as well.
//
// Time is linear in the text plus the bodies evaluated; nesting of any depth
// is handled without recursion on the machine stack.
void CreateIfString(WideString& text);

}  // namespace talp
