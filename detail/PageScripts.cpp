// SPDX-License-Identifier: MIT
#include "detail/PageScripts.h"

namespace pageScripts {

namespace {

std::string rgb(platform::Color color)
{
    return "rgb(" + std::to_string(color.red) + "," + std::to_string(color.green) + "," + std::to_string(color.blue)
        + ")";
}

std::string styleOf(std::string const& element, std::string const& property, platform::Color color)
{
    return element + ".style.setProperty('" + property + "', '" + rgb(color) + "', 'important');";
}

std::string forEach(std::string const& elements, std::string const& count, std::string const& statement)
{
    return "var all = document." + elements + ";for (var i = 0; i < " + count + "; i++) {" + statement + "}";
}

}

std::string restyling()
{
    // The statements that may fail come last, so a page without a footer or a header bar loses nothing.
    return "var content = document.getElementsByClassName('portal-login-section')[0].outerHTML; "
           "document.getElementsByTagName('body')[0].innerHTML = content; "
           "document.querySelectorAll('script').forEach((script) => { script.outerHTML = '' }); "
           "var style=document.createElement('style'), script = document"
           ".getElementsByTagName('link')[0];script.parentNode.insertBefore(style, script);"
           "style.innerHTML += '"
           "body { font-family: -apple-system !important; } "
           "ul li { list-style-type: none !important; } "
           "ul { margin-left: 20px !important; } "
           ".usage-message-content .listing { background: white; margin-top: 5px; padding: 15px; "
           "border-radius: 4px;border: 2px solid darkgrey !important; } "
           "body {font-family: -apple-system, Helvetica, Arial, sans-serif;background-color: rgb(236, "
           "236, 236) !important; cursor: default;} "
           "grid-container { max-width: 750px; margin: auto; margin-top: 25px !important; } "
           "span.link { display: none !important; } "
           ".portal-login-section { padding-top: 5px !important; } "
           "table { border: 2px solid darkgrey !important; border-collapse: separate; margin-top: 15px "
           "!important; } "
           "table tr td:first-child, table tr:first-child td:first-of-type, div.listing h2 { "
           "font-weight: bold !important; } "
           "table tr { border: 1px solid darkgrey !important; } "
           "'; "
           "document.getElementsByTagName('footer')[0].outerHTML = ''; "
           "document.getElementsByClassName('header-top-bar-container')[0].outerHTML = '';"
           "document.getElementById('headerMountPoint').outerHTML = '';";
}

std::string todayHighlight()
{
    return "var style=document.getElementsByTagName('style')[0]; style.innerHTML += 'table tr:last-child, "
           "span.highlight { background: rgb(212, 255, 209) !important; color: black !important; }';";
}

std::string todayLegend()
{
    return "document.getElementsByTagName('table')[0].outerHTML = "
           "document.getElementsByTagName('table')[0].outerHTML+'<div style=\"text-align: center;\"><span "
           "class=\"highlight\" style=\"padding: 8px; font-weight: bold;\">Highlighted Row</span> represents "
           "today.</div>';";
}

std::string banner(std::string_view warning)
{
    return std::string("document.getElementsByTagName('h2')[0].outerHTML = '<div class=\"listing\" style=\"padding: "
                       "15px; border-radius: 4px;border: 1px solid darkgray; background: white; margin-top: 8px; "
                       "margin-bottom: 15px;\"><center><strong>")
        .append(warning)
        .append("<br /><br /></strong></center></div>';");
}

std::string pageBackground(platform::Color color) { return styleOf("document.body", "background-color", color); }

std::string pageText(platform::Color color) { return styleOf("document.body", "color", color); }

std::string boxBackground(platform::Color color)
{
    return forEach("getElementsByClassName('listing')", "all.length", styleOf("all[i]", "background-color", color));
}

std::string rowBackground(platform::Color color, bool lastIsToday)
{
    return forEach("getElementsByTagName('tr')", lastIsToday ? "all.length-1" : "all.length",
        styleOf("all[i]", "background-color", color));
}

std::string hasFailureNotice()
{
    return "document.getElementsByClassName('usage-message-failure')[0].innerHTML.includes('error')";
}

std::string nothing() { return "undefined"; }

}
