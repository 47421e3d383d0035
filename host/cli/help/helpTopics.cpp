#include "host/cli/help/helpTopics.h"

#include <algorithm>
#include <array>

namespace Zamt::Host {

namespace {

constexpr std::string_view startBody =
    R"page(Make a cloud to play with. The surface of its lake is written beside it, as
lake-water.ply.

  quindle sample lake.las
  quindle info lake.las

See which Quindles there are, what one needs and what it will do.

  quindle list
  quindle explain "Underwater ground"

Preview before you run: the counts are exact, and nothing is written. Then
run, into a new file.

  quindle preview "Underwater ground" lake.las \
      --set water=lake-water.ply
  quindle run "Underwater ground" lake.las \
      --set water=lake-water.ply -o out.las

A question needs no Quindle. One line counts points, puts them into a class or
takes them out, and --quindle prints the Quindle that it is, to go on with.

  quindle count 'class("Ground") and neighbours(1) <= 3' lake.las
  quindle count --quindle 'class("Ground") and neighbours(1) <= 3'

Write one yourself: start from the text of another, check it, and keep it in
the collection under the name that it gives itself.

  quindle show "Isolated noise" > my.quindle
  quindle check my.quindle
  quindle save my.quindle

The language is described by "quindle reference", what a "select" can ask by
"quindle conditions".
)page";

constexpr std::string_view collectionBody =
    R"page(Quindles that have a name of their own are kept in directories. Yours comes
first, and is made when you save the first one. It is

  $APPDATA/Orrel/quindles          if APPDATA is set,
  $XDG_DATA_HOME/orrel/quindles    else if XDG_DATA_HOME is set,
  $HOME/.orrel/quindles            else.

Then come those of the installation: the directory "quindles" in each
directory of QUINDLE_DATA_DIRS, which are separated by colons, or, if that is
not set, in the one that was installed with the program.

Of several Quindles of one name the first one counts. So yours hides an
installed one of the same name, and when you delete yours the installed one
comes back. What is installed is never written to: "quindle disable" copies it
to your directory first.

  quindle save my.quindle
  quindle list
  quindle show --path "Isolated noise"

An argument called QUINDLE is looked up so: "-" is standard input. What holds
a "/", ends in ".quindle" or names something that is there is a file. Anything
else is the name of a Quindle of the collection, and the case of its letters
does not matter.

  quindle explain "isolated noise"
  quindle explain ./my.quindle
  quindle explain - < my.quindle

The step "run" of a Quindle finds others in the collection, and else beside
the file of the Quindle that is run.
)page";

constexpr std::string_view regionsBody =
    R"page(A region says where points may change. It is given with --region, or with
--set to a parameter of the type Region or Brush. Its coordinates are those of
the cloud. It is one of these:

  512000 5403000 512100 5403080           a box in x and y: two corners
  512000 5403000 370 512100 5403080 390   a box: two corners x y z
  POLYGON ((x y, x y, x y), (x y, ...))   WKT; further rings are holes
  MULTIPOLYGON (((x y, ...)), ((...)))    WKT, several polygons
  {"type": "Polygon", ...}                GeoJSON

The corners of a box may be any two that lie opposite. Numbers are separated
by blanks or commas and may stand in parentheses. GeoJSON is a Polygon, a
MultiPolygon, a Feature or a FeatureCollection of these. A polygon holds for
all heights, and what lies on its line is inside. At most 10000 lines of an
outline may lie side by side at one height of the map.

  quindle preview "Isolated noise" lake.las \
      --region "512000 5403000 512100 5403080"
  quindle preview "Isolated noise" lake.las \
    --region "POLYGON ((512000 5403000, 512100 5403000, 512050 5403080))"

--region takes a file as well, written @FILE, with any of these in it; @- is
standard input. --set does not: have the shell read it.

  echo "512000 5403000 512100 5403080" > field.txt
  quindle preview "Isolated noise" lake.las --region @field.txt
  quindle preview "Restore class" lake.las --set from=Ground \
      --set region="$(cat field.txt)"

A Quindle changes points only in the region of --region, or in the whole cloud
without one. A parameter of the type Region or Brush takes that region if it
is not set; one with the default "brush" takes nothing if there is none.
--classes narrows down further which points may change.
)page";

constexpr std::string_view valuesBody =
    R"page(--set NAME=VALUE gives a parameter of the Quindle its value; write it once for
each. What is left out takes its default. "quindle explain" lists the
parameters. The types:

  Number    0.5, -4 or 1e-3, with a point whatever the language of the
            system. One outside the range of the parameter is refused.
  Text      any text. Where a condition takes a position, three numbers:
            "512100 5403080 400".
  Surface   the path of a PLY, OBJ or STL file; "class:Ground" for the
            cloud's own points of a class, or of several with commas,
            as they stand when the step is worked out, joined to
            triangles, and "class:Ground?longest=20" for those of
            them whose sides are at most 20 long in plan;
            "level:405.2" for one height everywhere. A file of such a
            name comes first. At most 10000 triangles of a file may lie
            over one place or meet in one corner.
  File      a path.
  Class     the name of a class as "quindle info" writes it, or its
            number; several are separated by commas. See "quindle help
            classes".
  Region    a region, see "quindle help regions". Brush is the same.
  Grid      the cloud. Leave it out: the cloud of the command is taken.
  Field     the field to change. Leave it out: only Classification,
            which is taken then, can be changed.

Quote values that hold blanks. Paths are those of the shell that you write in,
not of the file of the Quindle.

  quindle preview "Isolated noise" lake.las \
      --set radius=3 --set company=2
  quindle preview "Over water" lake.las --set water=lake-water.ply
  quindle preview "Impossible heights" lake.las \
      --set impossible="z > 450"
  quindle preview "Restore class" lake.las --set from="Ground, 9" \
      --region "512000 5403000 512100 5403080"

The class that points go to and its colour are no values to set. They are
written in the Quindle, as in: classify into "Underwater" as 27 color (0.1,
0.3, 0.7)
)page";

constexpr std::string_view classesBody =
    R"page(A class has a number, which the points carry, and a name, which Quindles say.
The clouds of one command share one table of names, so that a name is the same
number in all of them. It is filled in this order:

  1. What the files define, in their record of class names.
  2. The standard's current table, for every point format: Ground is 2, Low
     Noise 7, Rail 10. "quindle info" shows the names of what a cloud holds.
  3. A new name in "classify into" gets the number behind the highest label:
     64 or more, which the standard leaves to you. Points of the formats 0 to
     5 hold classes up to 31 only, and there it is 23 or more. A number that
     points are in already is passed over. The name goes into the files.

"as" gives a new class its number. Where that is not what the standard says,
and no file defines or uses the standard's class, the Quindle has its way, and
a warning says what the standard makes of it. Another says where points are in
that number already.

  classify into "Underwater" as 27
  classify into "Rail" as 40        the standard has 10: a warning
  classify into "Ground" as 40      refused where points are Ground

Names of older tables of the standard are understood where a Quindle says
them: "Low Point" is 7, "Model Key-point" 8 and "Overlap" 12. A name longer
than 15 bytes is cut in the file, and found by its whole all the same.

Nothing is done, and a sentence says why,

  - where a Quindle says a class in which two of the files contradict each
    other: one number under two names, or one name under two numbers. Files
    may differ in any class that it does not say;
  - where a Quindle, together with those that it runs, calls one number by two
    names;
  - where no number is left for a new name that all clouds can hold.

  quindle count 'class("Low Noise")' lake.las
  quindle classify 'Z > 440' into "High Noise" lake.las -o out.las
)page";

constexpr std::string_view outputBody =
    R"page(Results go to standard output; diagnostics and progress go to standard error.
Each diagnostic is one line, a whole sentence that says what to do next:

  FILE:LINE:COLUMN: SEVERITY: MESSAGE

SEVERITY is note, warning or error. COLUMN, LINE and FILE are left out where
there is none. FILE is <stdin> for standard input. While a Quindle runs, it is
the name of the Quindle or of one of its parts, and the cloud stands in front
of it, or in parentheses behind a message that has a place in a file. What the
objects of the scene say in passing is told with --verbose only.

With --json the result is one JSON object on standard output. The diagnostics
are in it, under "diagnostics": a list of objects with the keys severity,
message, file, line and column, and cloud where they are about one; a line or
column of 0 means none. Wrong usage is told on standard error even so.

  quindle check --json my.quindle
  quindle info --json lake.las

Colour and progress appear only on a terminal, and never when NO_COLOR is set.
Progress tells how far the work is, how many points of the cloud at hand it
gets through in a second, and about how long the rest will take.
There, too, the texts of "reference" and "help" are shown by a pager.

Files are written whole or not at all: beside the old one first, then in its
place. Ctrl-C ends the work as soon as it can be left, and the file at hand
stays as it was; clouds that were finished before stay written. A second
Ctrl-C ends it at once, with the same promise.

A cloud is held while it is written over itself: a second command that wants
to change it meanwhile is refused. Refused as well is one that no new file may
take the place of, since it has several names (hard links) or its directory
forbids it; -o writes it elsewhere.

The exit codes are listed by "quindle help exit".
)page";

constexpr std::string_view scriptingBody =
    R"page(One command takes many clouds. Each is worked on by itself, in the order
written; one that fails does not keep the others from being run, and the exit
code is then 1. Without -o or --in-place nothing is run.

  quindle run "Isolated noise" lake.las -o out
  quindle run "Isolated noise" lake.las -o cleaned.las
  quindle run "Isolated noise" cleaned.las --in-place

With a directory after -o each cloud keeps its name in it; the directory has
to be there. Several clouds need one, or --in-place. Two clouds that would be
written to the same file are refused before anything is run, and so is a name
that ends in neither .las nor .laz.

Several clouds end in a summary: how many were changed, which classes went
where in all of them, and how many failed and why.

In a shell, go by the exit code, and take numbers from the JSON rather than
from the text.

  quindle check my.quindle && quindle run my.quindle lake.las -o out
  quindle fmt --check my.quindle || quindle fmt --write my.quindle
  quindle preview --json my.quindle lake.las > counts.json

Editors check and format what is being written through standard input; the
lines of "quindle check" have the form that most of them take for places to
jump to.

  quindle check - < my.quindle
  quindle fmt - < my.quindle
)page";

constexpr std::string_view environmentBody = R"page(These variables are read, and no file of settings:

  APPDATA             The place of your own Quindles, the first of
  XDG_DATA_HOME       these three that is set: see
  HOME                "quindle help collection".
  QUINDLE_DATA_DIRS   The directories of the installed ones, in which
                      "quindles" is looked for, separated by colons.
  PAGER               The command that shows long texts on a terminal;
                      "less -R" if it is not set, none if it is empty.
  NO_COLOR            No colour and no progress, whatever it is set to.
)page";

constexpr std::string_view exitBody = R"page(A command ends with one of these:

  0   It did what it was asked to.
  1   It ran and found faults, or could not finish: a Quindle with
      errors, a file that can't be read or written.
  2   It was called wrongly, and nothing was done.

Interrupted by Ctrl-C or asked to end, it tidies up and then ends by that
signal, for which a shell shows 130 or 143. The file at hand is the old one
or the new one, whole.

1 is also the answer "no" of commands that are asked something: "check" with
errors, "fmt --check" with files that would change, "search" that finds
nothing, "keys --free" with a key that is taken. Warnings and notes do not
change the exit code.
)page";

constexpr std::array<HelpTopic, 9> topics{{
    {"start", "First steps: a cloud to play with, a preview, a run, a Quindle of your own", "EXAMPLES",
     startBody},
    {"collection", "Where Quindles are kept, and how one is found by name", "COLLECTION", collectionBody},
    {"regions", "How to say where to work: boxes, WKT, GeoJSON", "REGIONS", regionsBody},
    {"values", "How to give parameters their values with --set", "VALUES", valuesBody},
    {"classes", "Which classes there are, and the numbers of new ones", "CLASSES", classesBody},
    {"output", "What is printed where, JSON, colour, and how files are written", "OUTPUT", outputBody},
    {"scripting", "Many clouds at once, shell scripts and editors", "SCRIPTING", scriptingBody},
    {"environment", "The environment variables that are read", "ENVIRONMENT", environmentBody},
    {"exit", "The exit codes", "EXIT STATUS", exitBody},
}};

} // namespace

std::span<const HelpTopic> helpTopics() { return topics; }

const HelpTopic* findHelpTopic(std::string_view key) {
  const auto found =
      std::find_if(topics.begin(), topics.end(), [&](const HelpTopic& topic) { return topic.key == key; });
  return found == topics.end() ? nullptr : &*found;
}

} // namespace Zamt::Host
