#pragma once

#include <QList>
#include <QString>

#include <utility>

namespace zentrik::test {

// Replies of the kind models send, plus the constructs that let later text change earlier
// blocks: open fences, lists that continue after blank lines, tables that take a
// paragraph's last line, setext underlines, lazy continuation, reference definitions.
inline QList<std::pair<const char *, QString>> sampleReplies()
{
    return {
        { "typical answer", QStringLiteral(R"(# Setting up the project

Here is a **quick** overview of the steps:
1. Install the *dependencies*
2. Configure the build
   - use `cmake`
   - pick a generator

3. Run the tests

```bash
cmake -S . -B build
cmake --build build

ctest --test-dir build
```

| Option | Default | Meaning |
|:-------|:-------:|--------:|
| `A` | on | first |
| B | off | ~~second~~ |
Trailing row without pipes

> **Note:** a quote with a
lazy continuation line
> - and a quoted item

Setext heading
==============

- [ ] still to do
- [x] done already

***
Final words with a link to https://example.com, www.example.org and emoji 😀👍🏽, 𝔘𝔫𝔦𝔠𝔬𝔡𝔢 and 日本語のテキスト.
)") },
        { "fences and html", QStringLiteral(R"(Intro paragraph
| a | b |
|---|---|
| 1 | 2 |
# Heading right after a table
text right after the heading
````markdown
```inner
not closing the outer fence
```

still inside
````
~~~ python extra words
print("tilde")
~~~
    indented code

    after a blank line
paragraph after code

<!-- a comment

that spans a blank line -->
<div>
html block
</div>

* star list

* loose item
	tabbed continuation

+ plus list
10) ten
11) eleven
Setext candidate
---
not a heading, a rule above
```
unclosed fence at the end
)") },
        { "crlf and odd characters",
            QStringLiteral("Paragraph\r\nwith CRLF\r\n\r\n\uFEFFbom at a line start\n\n"
                           "\uFEFF# not a heading\n\n# A\rpara after a heading\r\r# B\r"
                           "```\rcode\r```\rafter code\r\r# C\r\n- item\r\n# D\n"
                           "tab\there\r\n- item\r\n\r\n  continued\r\n\r\nLast\rline\r\r"
                           "Ünïcödé * not emphasis *\n\n***bold italic***\n\ne\u0301\u0302 "
                           "combining\n\n\u0000nul\n") },
        { "lists and quotes", QStringLiteral(R"(1. Step one:
   ```sh
   make
   ```
2. Step two
   > quoted in an item

   More text in the item

- other list after the ordered one
  1. nested ordered
     - deeper
- [ ] task

   - indented three

> quote
>
> > nested quote
> ```
> code in quote
> ```

Text
===

Paragraph right above a table
h1 | h2
---|---
c1 | c2


1. numbered
1. all with one
1. the same number

3) starting at three
7) then seven
9) and nine

Para *emphasis that
spans lines* and **bold
across** lines.
- list interrupting a paragraph
Lazy text
)") },
        { "long lines",
            QStringLiteral(
                "A long paragraph line that keeps going *with emphasis that opens early and stays open across the "
                "freeze length of the live part before it finally* closes, then `a code span that also runs for quite "
                "a "
                "while across many words before it ends` and a [link text that is long enough to cross the freeze "
                "point "
                "as well](https://example.com/long) and foo_bar_baz with **bold**text and _under_score, _under_ score, "
                "a<b, [relative](page) and [ref] (not a link) and ~~strike across many many words until the end~~ "
                "done. Then www.example.com/path and "
                "mail@example.com and http://x.org/a_b plus &amp; &copy entity and a\\*escaped\\* star.\n\n"
                "- a list item line that is long enough to freeze with *emphasis spanning the freeze point across "
                "several words and more* and [a link spanning](https://x.org) words\n"
                "- second item **bold that spans across the live part boundary of the item paragraph and beyond** end\n"
                "  1. nested item with enough words to freeze *in the middle of a long nested line of text* here\n\n"
                "> a quoted line long enough to freeze with `code that spans the freeze point across a number of "
                "words` and after that *an open star that never closes in this quote at all and keeps going\n"
                "> second quoted line\n") },
        { "reference definitions", QStringLiteral(R"(See [the docs][d] and [x] for more.

More text before the definitions.

- item with [x]

[d]: https://docs.example.com
[x]: <https://x.example.com> "Title"

After the definitions: [d].
)") },
        { "brackets that are no definitions", QStringLiteral(R"(Python with type hints:

```python
def f(x: list[int]) -> dict[str, int]:
    return {k: v for k, v in x}
```

An array `a[1]:` inline and [not a link] here.

- [ ] task: with a colon
- [x]: odd but fine
)") },
        // A byte order mark that opens a line inside a block is text: the streamed rendering
        // keeps it in a code block it extends, so a whole render must keep it too.
        { "byte order marks inside blocks",
            QStringLiteral("```\r\uFEFF\uFFFD first code line\r\uFEFFsecond\r```\n\n"
                           "Text\n\uFEFFafter a break &\uFEFFafter an ampersand\n") },
        // Form feed, vertical tab and no-break space do not end an address; the letters that
        // follow them still belong to the link.
        { "addresses across unusual white space",
            QStringLiteral("See https://x.org\vpath and https://a\u00A0b here, ftp://\uFFFD\f\uFFFD\u0001 too\n") },
        // A task item whose text holds "[x]" stays unchecked however the line arrives.
        { "task boxes and brackets",
            QStringLiteral("- [ ] index v[x] of the vector\n- [x] done [ ] already\n"
                           "   1. [ ] nested m[X]\n") },
    };
}

} // namespace zentrik::test
