// The style sheet of fleet_page.h, in addition to html_style.h. No character in it needs escaping.
#pragma once

constexpr const char* kFleetStyle =
    ".counts,.contents{display:flex;flex-wrap:wrap;gap:.3rem 1.6rem;margin:1rem 0;padding:0;list-style:none}"
    ".counts b{font-size:1.5rem}tbody th{overflow-wrap:anywhere;min-width:7rem}th "
    ".soft{font-weight:400}[colspan]{padding-top:.8rem}"
    ".long{break-inside:auto}.listing{white-space:normal}.listing ul,.listing ol{margin:0;padding-left:1.3rem}"
    ".listing ol{padding-left:1.9rem}"
    // Most machines take one line, or one for each monitor.
    ".machines table{font-size:.84rem;line-height:1.3}.machines td,.machines "
    "th{padding-top:.12rem;padding-bottom:.12rem}"
    ".machines thead th{width:24%}.machines thead th:nth-child(2){width:15%}.machines thead th:nth-child(3){width:61%}"
    // A narrow screen shows the cells of a machine one below the other, each after the name of its column.
    "@media screen and (max-width:40rem){.machines thead{position:absolute;clip-path:inset(50%)}"
    ".machines tr,.machines tbody th,.machines td{display:block;border:0;padding:.1rem 0}.machines td:empty{display:"
    "none}"
    ".machines tr{border-bottom:1px solid var(--line);padding:.5rem 0}"
    ".machines td[data-name]:before{content:attr(data-name);color:var(--soft);margin-right:.4rem}}";
