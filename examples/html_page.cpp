// The page of the contact sheet: HTML with an embedded style.
#include "html_page.h"

#include <cstdio>
#include <fstream>

namespace sheet {
namespace {

constexpr const char *head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>orv contact sheet</title>
<style>
:root { --ink: #26221c; --soft: #71695d; --paper: #f4f1ea; --card: #fffdf9; --line: #ddd6c8; --accent: #8a3b1c; }
* { box-sizing: border-box; }
body { margin: 0; background: var(--paper); color: var(--ink); font: 16px/1.45 Georgia, "Times New Roman", serif; }
header, section { max-width: 1320px; margin: 0 auto; padding: 0 28px; }
header { padding-top: 44px; }
h1 { margin: 0; font-size: 34px; font-weight: normal; letter-spacing: .01em; }
header p { margin: 6px 0 0; color: var(--soft); max-width: 70ch; }
h2 { margin: 44px 0 16px; padding-bottom: 6px; border-bottom: 1px solid var(--line); font-size: 21px;
     font-weight: normal; }
.sheet { display: grid; grid-template-columns: repeat(auto-fill, minmax(290px, 1fr)); gap: 24px; align-items: start; }
figure { margin: 0; padding: 12px; background: var(--card); border: 1px solid var(--line); border-radius: 3px;
         box-shadow: 0 1px 3px rgba(60, 45, 20, .08); }
figure.wide { grid-column: span 2; }
figure a { display: block; }
img { display: block; width: 100%; height: auto; max-height: 520px; object-fit: contain; background:
      repeating-conic-gradient(#e4e0d8 0% 25%, #fff 0% 50%) 0 0 / 18px 18px; }
figcaption { padding-top: 10px; }
figcaption p { margin: 0; }
.operation { display: flex; justify-content: space-between; gap: 12px; font: 14px/1.5 ui-monospace, "DejaVu Sans Mono",
             Consolas, monospace; }
.operation b { color: var(--accent); font-weight: 600; }
.facts { color: var(--soft); font-size: 13.5px; }
footer { height: 60px; }
@media (max-width: 700px) { figure.wide { grid-column: auto; } header, section { padding: 0 14px; } }
</style>
</head>
<body>
)";

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string timeText(double microseconds)
{
    if (microseconds < 0)
        return "";
    const bool nanoseconds = microseconds < 1;
    const int digits = nanoseconds || microseconds >= 100 ? 0 : microseconds < 10 ? 2 : 1;
    char text[40];
    std::snprintf(text, sizeof text, "%.*f %s", digits, nanoseconds ? microseconds * 1000 : microseconds,
                  nanoseconds ? "ns" : "µs");
    return text;
}

void writeFigure(std::ostream &page, const Figure &figure)
{
    const bool wide = figure.size.width > 2 * std::int64_t{figure.size.height};
    const std::string caption = escaped(figure.entry->caption);
    std::string facts = escaped(figure.worked);
    if (!figure.shownAs.empty())
        facts += "; " + escaped(figure.shownAs);
    if (!figure.photograph.empty())
        facts += "; " + escaped(figure.photograph);
    page << (wide ? "<figure class=\"wide\">" : "<figure>") << "<a href=\"" << figure.file << "\"><img src=\""
         << figure.file << "\" width=\"" << figure.size.width << "\" height=\"" << figure.size.height << "\" alt=\""
         << caption << "\"></a>\n<figcaption><p class=\"operation\"><b>" << escaped(figure.entry->operation)
         << "</b><span>" << timeText(figure.microseconds) << "</span></p>\n<p>" << caption
         << "</p>\n<p class=\"facts\">" << facts << "</p></figcaption></figure>\n";
}

} // namespace

void writePage(const std::string &path, const std::string &subtitle, const std::vector<Figure> &figures)
{
    std::ofstream page(path, std::ios::binary);
    page << head << "<header><h1>orv contact sheet</h1>\n<p>" << escaped(subtitle)
         << "</p>\n<p>Under each picture: the function, the time of one call (the shortest of several), what it shows, "
            "and depth, channels and size of what the call processed.</p></header>\n";
    const Family *family = nullptr;
    for (const Figure &figure : figures) {
        if (figure.family != family) {
            if (family != nullptr)
                page << "</div></section>\n";
            family = figure.family;
            page << "<section><h2>" << escaped(family->title) << "</h2>\n<div class=\"sheet\">\n";
        }
        writeFigure(page, figure);
    }
    if (family != nullptr)
        page << "</div></section>\n";
    page << "<footer></footer>\n</body>\n</html>\n";
    page.close();
    if (!page)
        throw Failure(path + ": cannot write the page");
}

} // namespace sheet
