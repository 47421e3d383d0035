#pragma once

#include <map>
#include <random>
#include <string>
#include <vector>

namespace Zamt::Testing {

/// The text of a Quindle that reads without errors, with everything in it that is hard to read and to print.
/// The same seed gives the same text.
class RandomText {
public:
  static std::string make(unsigned seed) {
    RandomText text(seed);
    return "quindle \"" + text.expand('x') + "\" {" + text.expand('i') + " on run { } }";
  }

private:
  explicit RandomText(unsigned seed) : random_(seed) {}

  /// A "$" and a letter in a form stand for one of that letter's forms, at random; the first one when it
  /// is deep or long enough. "$u" is a word that was not used before. Left out are a comment without
  /// text, an "and" in parentheses right inside an "and", and the same of "or", which do not come back.
  std::string expand(char letter, unsigned depth = 0) {
    static const std::map<char, std::vector<std::string>> forms{
        {'i',
         {"", "$i description \"$x\"", "$i category \"$x\" icon \"$x\"", "$i shortcut \"$x\" version \"$x\"",
          "$i tags \"$x\", \"$x\"", "$i enabled false", "$i param $u : $w $d $h",
          "$i param $u : $w [$v .. $v] $h", "$i # $c\n", "$i on run {$b}", "$i on key \"$x\" {\n$b}",
          "$i on tile.enter {$b\n}", "$i on load {$b}"}},
        {'d', {"", "= pick", "= brush", "= active", "= $v", "= $v [$v .. $v]"}},
        {'h', {"", "\"$x\""}},
        {'v', {"1", "$n", "\"$x\"", "true", "false", "$w", "()", "($v)", "($v, $v,$v)"}},
        {'n', {"0", "0.50", ".5", "1e-3", "2E+10", "-4", "--5", "- -.25", "1e999"}},
        {'x',
         {"", "", "", "", "a$x", " $x", "\\\"$x", "\\\\$x", "\\n$x", "\\\n$x", "\t$x", "\r$x", "\\q$x",
          "{n}$x", "/*#$x", "}$x", ".$x", "\xc3\xa4$x", std::string(1, '\0') + "$x"}},
        {'w', {"a",  "_",   "b.c", "x1.",  "a..b", "let", "in",    "as",   "color",      "each",
               "if", "for", "on",  "else", "into", "e5",  "param", "pick", "tile.enter", "quindle"}},
        {'c', {"c", "# c", "// }", "\r c\r", "*/ on run {", "\xc3\xa4\"\\", " \t c "}},
        {'b',
         {"", "$b\n$s", "$b\n$s", "$b $s", "$b # $c\n", "$b // $c\n", "$b /* c */", "$b /* c\n  d\r\n*/"}},
        {'s',
         {"select $o", "let $w = $o", "create $w = \"$x\"", "classify into $o",
          "classify into $o as $v color $v", "classify into $o colour $v", "set $w = $o", "connect $w <- $w",
          "call $w.a", "call b.\"$x'\"($r)", "call a.\"b c.d\"()", "run \"$x\"()", "run \"$x\"($r)",
          "report \"$x\"", "if $o {$b}", "if $o {$b} else {$b}", "for each $w in $o {$b}"}},
        {'r', {"$o", "$w: $o", "$r, $r", "not: a, a : b"}},
        {'o', {"$a", "$a or $a", "$a or $a or $a", "(a and $m) or $a"}},
        {'a', {"$m", "$m and $m", "$m and $m and $m", "($a or $o) and $m", "$m and ($a or $a)"}},
        {'m', {"$t", "not $m", "not ($o)", "$t $p $t", "($o) $p $t", "$t$p ($o)", "$t $p not"}},
        {'p', {"<", "<=", ">", ">=", "==", "!="}},
        {'t', {"a", "$w", "$n", "\"$x\"", "true", "false", "and", "or", "$w()", "$w ($r)", "(f($r))"}},
    };
    if (letter == 'u') return "u" + std::to_string(words_++);
    const std::vector<std::string>& choice = forms.at(letter);
    const std::string& form =
        depth > deepEnough || length_ > longEnough ? choice[0] : choice[random_() % choice.size()];
    std::string out;
    for (std::size_t i = 0; i < form.size(); ++i)
      out += form[i] == '$' ? expand(form[++i], depth + 1) : form.substr(i, 1);
    length_ += form.size();
    return out;
  }

  static constexpr unsigned deepEnough = 25;
  static constexpr std::size_t longEnough = 2000;

  std::mt19937 random_;
  std::size_t length_ = 0;
  unsigned words_ = 0;
};

} // namespace Zamt::Testing
