#include "gui/help_pages.h"

#include <array>

namespace talvex::gui {

namespace {

constexpr const char* kOverview = R"(
<h2>Talvex</h2>
<p>Talvex calculates the exact probabilities of dice expressions. Type an expression into the
<b>Expression</b> field and press <b>Return</b> (or click <b>Roll</b>):</p>
<table cellspacing="0" cellpadding="3">
<tr><td><code>3d6</code></td><td>three six-sided dice, added up</td></tr>
<tr><td><code>1d20+5</code></td><td>a twenty-sided die plus five</td></tr>
<tr><td><code>drop(1d6,4,1,0)</code></td><td>four six-sided dice, the lowest one dropped</td></tr>
<tr><td><code>max(1d20,1d20)</code></td><td>the better of two twenty-sided dice</td></tr>
<tr><td><code>3d6 vs 2d10</code></td><td>which of the two rolls higher</td></tr>
</table>
<p>Every example in this help can be copied into the expression field.</p>
<p>Most expressions take a moment. A very large one (hundreds of dice with many sides, a
million-sided die combined many times) shows a progress bar and turns <b>Roll</b> into
<b>Cancel</b>: click it or press <b>Esc</b> to stop, and the previous results stay. One
calculation may take about ten seconds of work and about 1 GB of memory; beyond that it stops
and says that the expression is too large to calculate.</p>

<h3>What the window shows</h3>
<ul>
<li><b>Roll</b> (the dark field): one random roll of the expression. Press Return again on the
same expression to roll again; nothing else changes.</li>
<li><b>Statistics</b>: the mean, the standard deviation, the range, the number of distinct
values, the median and the most likely values (the mode). The field beside it shows the same
for the comparison.</li>
<li><b>Profile</b>: every outcome with its probability and the running total, with a bar for
each, and a diagram of the distribution split at the dividers (by default its quartiles).</li>
<li><b>Tables</b> and <b>Diagrams</b>: the expression and the comparison side by side, on
one scale.</li>
<li><b>Versus</b>: how often the expression rolls higher than the comparison and the other way
round, ties shared. <b>Versus with Tie</b> counts ties on their own.</li>
</ul>
<p>Long tables are grouped into ranges of outcomes so that they fit the window (see
<b>Table height</b> in the settings). Double-click any field, or use the <b>View</b> menu, to
open it in a window of its own with every row.</p>

<h3>Comparing two expressions</h3>
<p>Each expression you calculate joins the pop-up on the left. Switch <b>Mirror</b> on and
each one joins <b>Compare with</b> as well; pick one there to compare the current expression
with it. With <b>Mirror</b> and <b>Cycle</b> both on, each new expression is compared with the
one before, so typing <code>3d6</code> and then <code>2d10</code> shows <code>2d10</code>
against <code>3d6</code>.</p>
<p><b>Back</b> and <b>Forward</b> step through the requests of this session, as in a web
browser.</p>

<h3>When something cannot be calculated</h3>
<p>Malformed pieces are <i>undefined</i> rather than errors: <code>1/0</code>, <code>()</code>
or a missing operand give an outcome called "undefined" with its probability. A calculation
that leaves the 38-digit range (such as <code>400d6</code>, whose extreme outcomes are rarer
than 1E-128) or that would be too large (<code>1d1000000000</code>) is refused with a message
at the bottom of the window, and the previous results stay on screen.</p>
)";

constexpr const char* kDice = R"(
<h2>Dice</h2>
<table cellspacing="0" cellpadding="3">
<tr><th align="left">Written</th><th align="left">Means</th></tr>
<tr><td><code>3d6</code></td><td>X dice of Y faces (numbered 1 to Y), added up</td></tr>
<tr><td><code>5c7</code></td><td>X tries each succeeding 7 times in 10: the number of
successes (0 to 5)</td></tr>
<tr><td><code>2p35</code></td><td>X tries each succeeding 35 times in 100: the number of
successes</td></tr>
<tr><td><code>4v8</code></td><td>X ten-sided dice whose faces above 8 count zero, added
up</td></tr>
<tr><td><code>1w60</code></td><td>X hundred-sided dice whose faces above 60 count zero, added
up</td></tr>
<tr><td><code>(1d4)d6</code></td><td>a random number of dice: one to four six-sided
dice</td></tr>
<tr><td><code>2d(1d3*2)</code></td><td>a random number of faces</td></tr>
<tr><td><code>2.5d6</code></td><td>counts and sizes are rounded to whole numbers (this is
<code>3d6</code>)</td></tr>
</table>
<p>The dice letters bind tighter than any other operator: <code>2d6*2</code> is
<code>(2d6)*2</code>.</p>
)";

constexpr const char* kArithmetic = R"(
<h2>Arithmetic</h2>
<table cellspacing="0" cellpadding="3">
<tr><th align="left">Written</th><th align="left">Means</th></tr>
<tr><td><code>3d6+2</code>, <code>1d8-1</code></td><td>addition and subtraction</td></tr>
<tr><td><code>2*(1d6)</code>, <code>1d20/2</code></td><td>multiplication and division</td></tr>
<tr><td><code>2^3</code></td><td>powers</td></tr>
<tr><td><code>-1d6</code></td><td>a leading sign</td></tr>
<tr><td><code>1e3</code></td><td>a number in exponent notation (1000)</td></tr>
<tr><td><code>pi</code>, <code>ex</code></td><td>the constants &pi; and e</td></tr>
<tr><td><code>(3d6+1)*2</code></td><td>parentheses group</td></tr>
<tr><td><code>Attack: 1d20+5</code></td><td>a label before the first colon is only a
name</td></tr>
</table>
<p>Powers bind tighter than multiplication and division, which bind tighter than addition and
subtraction. Every operator is left-associative: <code>2^3^2</code> is <code>(2^3)^2</code>,
that is 64, and <code>8/2/2</code> is 2.</p>
<p>Each die is rolled independently: <code>1d6+1d6</code> is the same as <code>2d6</code>,
and <code>2*1d6</code> is one die doubled.</p>

<h2>Definitions</h2>
<table cellspacing="0" cellpadding="3">
<tr><td><code>a=1d6;b=a+a;b*2</code></td><td>definitions, separated by semicolons, before the
expression. A definition is written out wherever its name is used, so each use rolls anew:
here <code>b</code> is two separate dice.</td></tr>
<tr><td><code>a~1d6;a+a</code></td><td>a <i>hard</i> definition: one roll, used at every
occurrence. <code>a+a</code> is then one die doubled (2, 4, &hellip; 12).</td></tr>
</table>
)";

constexpr const char* kComparisons = R"(
<h2>Comparisons</h2>
<p>A comparison rolls two or more independent operands and reports who comes out on top. Its
outcomes are codes; the legend beside the table (and the <b>Versus</b> tabs) explains them for
the expression at hand.</p>
<table cellspacing="0" cellpadding="3">
<tr><th align="left">Code</th><th align="left">Outcome</th><th align="left">Example</th></tr>
<tr><td><code>vs</code></td><td>1 when the first operand is highest, &minus;1 when the second
is, &minus;2 when the third is, and so on. A tie's chance is shared equally among the operands
in it.</td><td><code>3d6 vs 2d10</code></td></tr>
<tr><td><code>vt</code></td><td>as <code>vs</code>, but a tie for the highest value is an
outcome of its own: 0.</td><td><code>3d6 vt 2d10</code></td></tr>
<tr><td><code>tt</code></td><td>which operands tie for the highest value: the digit 8
followed by one digit per operand, 1 for each operand in the tie (811: both tie; 800: no
tie).</td><td><code>3d6 tt 2d10</code></td></tr>
<tr><td><code>ch</code></td><td>a challenge: 1 when the first operand succeeds (rolls highest),
0 when it fails; its share of ties counts as a success.</td>
<td><code>1d20+5 ch 1d20+3</code></td></tr>
<tr><td><code>cw</code></td><td>a challenge in which every tie the first operand takes part in
is a success.</td><td><code>1d20 cw 1d20</code></td></tr>
<tr><td><code>cl</code></td><td>a challenge in which ties are failures.</td>
<td><code>1d20 cl 1d20</code></td></tr>
<tr><td><code>cu</code></td><td>a challenge in which ties are undefined.</td>
<td><code>1d20 cu 1d20</code></td></tr>
</table>
<p>More operands compare all at once: <code>3d6 vs 2d10 vs 1d20</code>. The operands are
compared at ten decimals. A comparison binds loosest of all, so <code>1d20+5 vs 2d10</code>
compares the sums.</p>
<p>The <b>Versus</b> tabs compare the current expression with the one chosen in <b>Compare
with</b> without typing a code: they show <code>(expression) vs (comparison)</code> and
<code>(expression) vt (comparison)</code>.</p>
)";

constexpr const char* kFunctions = R"(
<h2>Functions</h2>
<p>Each argument is any expression; bounds and counts may be random.</p>
<table cellspacing="0" cellpadding="2">
<tr><td><code>ln(X)</code></td><td>natural logarithm of each outcome</td></tr>
<tr><td><code>log(X)</code></td><td>base-10 logarithm of each outcome</td></tr>
<tr><td><code>exp(X)</code></td><td>e raised to each outcome</td></tr>
<tr><td><code>sin(X)</code></td><td>sine of each outcome (radians)</td></tr>
<tr><td><code>cos(X)</code></td><td>cosine of each outcome (radians)</td></tr>
<tr><td><code>tan(X)</code></td><td>tangent of each outcome (radians)</td></tr>
<tr><td><code>round(X)</code></td><td>each outcome rounded, halves away from zero:
<code>round(1d6/2)</code></td></tr>
<tr><td><code>floor(X)</code></td><td>each outcome rounded down</td></tr>
<tr><td><code>ceil(X)</code></td><td>each outcome rounded up</td></tr>
<tr><td><code>abs(X)</code></td><td>absolute value of each outcome</td></tr>
<tr><td><code>arcsin(X)</code></td><td>arc sine of each outcome (radians)</td></tr>
<tr><td><code>arccos(X)</code></td><td>arc cosine of each outcome (radians)</td></tr>
<tr><td><code>arctan(X)</code></td><td>arc tangent of each outcome (radians)</td></tr>
<tr><td><code>mean(X)</code></td><td>the mean of X, as a constant</td></tr>
<tr><td><code>stddev(X)</code></td><td>the standard deviation of X, as a constant</td></tr>
<tr><td><code>minval(X)</code></td><td>the smallest outcome of X, as a constant</td></tr>
<tr><td><code>maxval(X)</code></td><td>the largest outcome of X, as a constant</td></tr>
<tr><td><code>values(X)</code></td><td>the number of distinct outcomes of X, as a
constant</td></tr>
<tr><td><code>median(X)</code></td><td>the middle of the distinct outcomes of X, as a
constant</td></tr>
<tr><td><code>mode(X)</code></td><td>the most likely outcomes of X, equally likely</td></tr>
<tr><td><code>range(X)</code></td><td>the smallest and the largest outcome of X, equally
likely</td></tr>
<tr><td><code>max(X,Y,...)</code></td><td>the largest of independent rolls:
<code>max(1d20,1d20)</code></td></tr>
<tr><td><code>min(X,Y,...)</code></td><td>the smallest of independent rolls:
<code>min(1d20,1d20)</code></td></tr>
<tr><td><code>dieMult(X,N)</code></td><td>the sum of N independent rolls of X:
<code>dieMult(1d6+1,3)</code></td></tr>
<tr><td><code>diePow(X,N)</code></td><td>the product of N independent rolls of X</td></tr>
<tr><td><code>diew(X,A,Y,B,...)</code></td><td>X, Y, ... chosen in proportion to the means of
A, B, ...: <code>diew(1d6,1,1d8,2)</code></td></tr>
<tr><td><code>dier(N,S)</code></td><td>N dice of S sides, both random:
<code>dier(1d4,6)</code></td></tr>
<tr><td><code>die(X,Y,...)</code></td><td>X, Y, ... chosen with equal odds:
<code>die(1,5,10)</code></td></tr>
<tr><td><code>keep(X,L,H,R)</code></td><td>X where L &le; X &le; H, otherwise R:
<code>keep(1d20,10,20,0)</code></td></tr>
<tr><td><code>count(X,L,H)</code></td><td>1 where L &le; X &le; H, otherwise 0:
<code>count(1d6,5,6)</code></td></tr>
<tr><td><code>confineweightrange(X,L,H)</code></td><td>X within a band L..H of its cumulative
probability</td></tr>
<tr><td><code>confineweight(X,L,H)</code></td><td>X on the outcomes whose probability lies in
L..H</td></tr>
<tr><td><code>confine(X,L,H)</code></td><td>X rerolled until it lies in L..H:
<code>confine(1d20,5,15)</code></td></tr>
<tr><td><code>criterion(N,S,T)</code></td><td>successes among N dice of S sides, a success
being 1..T: <code>criterion(5,10,8)</code></td></tr>
<tr><td><code>drop(X,N,L,H)</code></td><td>N rolls of X, the L lowest and H highest dropped,
the rest summed: <code>drop(1d6,4,1,0)</code></td></tr>
</table>
)";

constexpr const char* kWindow = R"(
<h2>The window</h2>
<table cellspacing="0" cellpadding="3">
<tr><td><b>Return</b>, Ctrl+R</td><td>calculate the expression (or roll it again)</td></tr>
<tr><td>Esc</td><td>stop a long calculation (as <b>Cancel</b> does)</td></tr>
<tr><td>Ctrl+[ or Alt+Left</td><td>back to the previous request</td></tr>
<tr><td>Ctrl+] or Alt+Right</td><td>forward again</td></tr>
<tr><td>Ctrl+Up, Ctrl+Down</td><td>the expression above or below in the pop-up (with Shift:
the comparison)</td></tr>
<tr><td>Ctrl+E</td><td>edit the expressions of the current list</td></tr>
<tr><td>Ctrl+S</td><td>save the current list</td></tr>
<tr><td>Ctrl+L</td><td>the log</td></tr>
<tr><td>Ctrl+P</td><td>print the results</td></tr>
<tr><td>Ctrl+,</td><td>the settings</td></tr>
<tr><td>F1</td><td>this help</td></tr>
<tr><td>Ctrl+Q</td><td>quit</td></tr>
</table>
<ul>
<li><b>Expression lists</b>: each list is a text file in the lists folder (see <b>Lists
Folder...</b> in the Lists menu), its expressions separated by a backslash. Choosing a list
fills the expression pop-up; a comparison list fills the comparison pop-up. Expressions you
type join the current list; <b>Save</b> keeps them, <b>Revert</b> drops them, and Talvex asks
before leaving a list with unsaved changes. A label before a colon names an expression:
<code>Fireball: 8d6</code>.</li>
<li><b>The log</b> (View menu) keeps every calculation and its rolls, newest first, while
the <i>Log</i> box is ticked, up to the log size of the settings. It is kept between runs and
can be printed, cleared, or exported as rich text.</li>
<li><b>Import List</b> and <b>Export List</b> (File menu) exchange lists as text files in
the Mac OS Roman encoding, as older copies of Talvex wrote them.</li>
<li><b>Running Calculation</b> (Calculate menu): after each roll the expression field holds
the roll in parentheses, ready to be carried on, say with <code>+1d6</code>.</li>
<li><b>Settings</b>: the dividers of the diagrams, the largest table, the bar length, the
decimals shown, and what the log records. <b>Defaults</b> fills in the factory values;
nothing is taken until <b>Save</b>.</li>
<li><b>Reset All Settings and Quit</b> (File menu) returns Talvex to its factory settings.
Tick <i>Preserve expression lists and log</i> to keep those files.</li>
</ul>
)";

constexpr std::array<HelpPage, 6> kPages = {{
    {"Overview", kOverview},
    {"Dice", kDice},
    {"Arithmetic", kArithmetic},
    {"Comparisons", kComparisons},
    {"Functions", kFunctions},
    {"Window", kWindow},
}};

}  // namespace

std::span<const HelpPage> helpPages() { return kPages; }

}  // namespace talvex::gui
