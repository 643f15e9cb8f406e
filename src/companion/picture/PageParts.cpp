#include "companion/picture/PageParts.h"

#include "companion/picture/Markup.h"
#include "companion/picture/Palette.h"

#include <algorithm>
#include <cstddef>

namespace zolex::companion {

namespace {

/// Every pair of colours has a contrast of 4.5 at least, in the light and in the dark scheme.
constexpr std::string_view pageStyle = R"(<style>
:root{color-scheme:light dark}
body{margin:0 auto;padding:1rem;max-width:100rem;background:#ffffff;color:#1a1a1a;font:15px/1.45 system-ui,"Segoe UI","DejaVu Sans",sans-serif}
h1{font-size:1.5rem;margin:0}
h2{font-size:1.2rem;margin:2rem 0 0}
p{margin:.3rem 0}
.dim{color:#555555}
.warning{color:#7a4100}
.bad{color:#a8001e}
ul.findings{margin:.6rem 0;padding:.5rem .75rem;list-style:none;border-left:4px solid #7a4100;background:#fff6e5}
ul.findings.bad{border-color:#a8001e;background:#fdecee}
ul.findings .help{display:block;color:#555555;padding-left:1.2rem}
.picture-box{overflow-x:auto;margin:.6rem 0}
.picture-box svg{display:block;max-width:100%;height:auto}
table{border-collapse:collapse;margin:.6rem 0;font-variant-numeric:tabular-nums}
caption{text-align:left;font-weight:bold;padding:.2rem 0}
th,td{text-align:left;padding:.2rem .7rem;border-bottom:1px solid #c8c8c8;vertical-align:top;white-space:nowrap}
th{color:#555555;font-weight:600}
td.right,th.right{text-align:right}
td.code,code{font-family:"DejaVu Sans Mono",Consolas,Menlo,monospace;font-size:.9em}
.chip{display:inline-block;min-width:1.3em;text-align:center;font-weight:bold;border:1px solid #404040;border-radius:3px;padding:0 .2em}
.table-box{overflow-x:auto}
details{margin:.6rem 0}
pre{white-space:pre-wrap;overflow-wrap:anywhere}
summary{cursor:pointer}
@media (prefers-color-scheme:dark){
body{background:#16181d;color:#e8e8e8}
.dim,th,ul.findings .help{color:#b4b4b4}
.warning{color:#ffc266}
.bad{color:#ff9d9d}
ul.findings{border-color:#ffc266;background:#2c2517}
ul.findings.bad{border-color:#ff9d9d;background:#33191c}
th,td{border-color:#4a4d55}
.chip{border-color:#b4b4b4}
}
@page{size:A4;margin:12mm}
@media print{
:root{color-scheme:light}
body{background:#ffffff;color:#1a1a1a;padding:0;max-width:none;font-size:10pt}
.dim,th,ul.findings .help{color:#555555}
.warning{color:#7a4100}
.bad{color:#a8001e}
ul.findings{border-color:#7a4100;background:#ffffff}
ul.findings.bad{border-color:#a8001e;background:#ffffff}
.chip{border-color:#404040}
.picture-box,.table-box{overflow:visible}
.picture-box svg{min-width:0!important}
table{font-size:7.5pt;max-width:100%}
th,td{padding:.1rem .35rem;white-space:normal;overflow-wrap:break-word;border-color:#c8c8c8}
.right,.code{white-space:nowrap}
tr,ul.findings,.picture-box{break-inside:avoid}
h2{break-after:avoid}
}
</style>
)";

} // namespace

std::string pageHead(const std::string& title, std::string_view moreStyle) {
    std::string out = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
                      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
                      "<title>" +
                      escaped(title) + "</title>\n";
    out += pageStyle;
    out += moreStyle;
    return out + "</head>\n<body>\n";
}

std::string pageEnd() {
    return "</body>\n</html>\n";
}

std::string htmlRow(std::string_view tag, const std::vector<HtmlCell>& cells,
                    std::string_view classes) {
    std::string out = "<tr";
    if (!classes.empty()) {
        out += " class=\"" + std::string(classes) + "\"";
    }
    out += ">";
    for (const HtmlCell& cell : cells) {
        out += "<" + std::string(tag);
        if (!cell.classes.empty()) {
            out += " class=\"" + std::string(cell.classes) + "\"";
        }
        out += ">" + cell.markup + "</" + std::string(tag) + ">";
    }
    return out + "</tr>\n";
}

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : escaped(text);
}

std::string paragraph(const std::string& text, std::string_view classes) {
    return (classes.empty() ? "<p>" : "<p class=\"" + std::string(classes) + "\">") +
           escaped(text) + "</p>\n";
}

std::string findingsList(const std::vector<Finding>& findings) {
    if (findings.empty()) {
        return {};
    }
    bool isBad = false;
    std::string items;
    for (const Finding& finding : findings) {
        isBad = isBad || finding.severity == Severity::error;
        items += "<li>! ";
        if (!finding.file.empty()) {
            items += escaped(finding.file);
            items += finding.start.line > 0 ? ":" + std::to_string(finding.start.line) + ":" +
                                                  std::to_string(finding.start.column)
                                            : "";
            items += ": ";
        }
        items += escaped(finding.summary);
        std::string_view rest = finding.detail;
        items += rest.empty() ? "" : ": ";
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            items += escaped(rest.substr(0, end));
            items += end < rest.size() ? "<br/>" : "";
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        items += " <span class=\"dim\">" + escaped(finding.code) + "</span>";
        for (const std::string& help : finding.help) {
            items += "<span class=\"help\">" + escaped(help) + "</span>";
        }
        items += "</li>\n";
    }
    return std::string("<ul class=\"findings") + (isBad ? " bad" : "") + "\">\n" + items +
           "</ul>\n";
}

std::string arrayChip(const std::string& letter, std::size_t colour) {
    const ArrayColour& look = arrayColour(colour);
    return "<span class=\"chip\" style=\"background:" + std::string(look.fill) +
           ";color:" + std::string(look.ink) + "\">" + escaped(letter) + "</span>";
}

} // namespace zolex::companion
