// The style sheet of html_page.h: light, dark, on a phone and on paper. No character in it needs escaping.
#pragma once

constexpr const char* kHtmlStyle =
    ":root{color-scheme:light;--ink:#1c2128;--soft:#57606a;--paper:#fff;--panel:#f6f8fa;--line:#d0d7de;"
    "--accent:#0a58b5;--mark:#b35900;--alarm:#b42318}"
    "@media screen and (prefers-color-scheme:dark){:root{color-scheme:dark;--ink:#e6edf3;--soft:#9aa4af;"
    "--paper:#0d1117;--panel:#161b22;--line:#3d444d;--accent:#6cb0ff;--mark:#f0a050;--alarm:#ff8a80}}"
    "body{margin:0 auto;padding:1rem;max-width:76rem;background:var(--paper);color:var(--ink);"
    "font:1rem/1.45 system-ui,sans-serif}"
    "h1{font-size:1.6rem;line-height:1.2;margin:.5rem 0}h2{font-size:1.3rem;margin:1rem 0 .5rem}"
    "h3{font-size:1.1rem;margin:.9rem 0 .4rem}h4{font-size:1rem;margin:.9rem 0 .4rem}p{margin:.4rem 0}"
    ".soft,caption,.unit,.properties thead th{color:var(--soft)}a{color:var(--accent)}"
    "h1,h2,h3,h4,p,li,td,caption{overflow-wrap:anywhere}"
    // As many parts side by side as fit.
    ".row{margin:1rem "
    "0;display:grid;grid-template-columns:repeat(auto-fit,minmax(min(100%,20rem),1fr));gap:1rem;align-items:start}"
    ".cards{grid-template-columns:repeat(auto-fill,minmax(min(100%,26rem),1fr))}"
    ".panel{min-width:0;background:var(--panel);border:1px solid var(--line);border-radius:8px;padding:0 1rem .6rem}"
    ".panel .row{margin:.6rem 0}"
    // A controller and its heads, joined by lines: from the controller to the right, down, and to each head.
    // content:attr(none) names a missing attribute, which gives empty content without quotes.
    ".card{display:grid;grid-template-columns:minmax(8.2rem,2fr) 3fr;column-gap:1.6rem;align-items:start;"
    "max-width:34rem}"
    ".heads{list-style:none;padding:0;margin:0;max-width:20rem;display:grid;gap:.7rem}"
    ".controller,.heads li{position:relative;min-width:0;background:var(--paper);border:1px solid var(--soft);"
    "padding:.4rem .6rem}.controller{border:2px solid var(--accent)}"
    ".controller p,.heads p,.monitors p{margin:0;font-size:.85rem}.name{font-weight:600}"
    ".controller span,.heads span{display:inline-block}"
    ".card .heads li::before{content:attr(none);position:absolute;right:100%;top:1.3rem;width:.8rem;"
    "border-top:1px solid var(--soft)}"
    ".card .heads li:first-child::before{width:calc(1.6rem + 1px)}"
    ".card .heads li:not(:last-child)::after{content:attr(none);position:absolute;right:calc(100% + .8rem);top:1.3rem;"
    "bottom:calc(-2rem - 2px);border-left:1px solid var(--soft)}"
    // Pictures.
    ".picture{display:block;width:100%;height:auto;font:11px system-ui,sans-serif}text{fill:var(--soft)}"
    ".middle{text-anchor:middle}.end{text-anchor:end}.grid{stroke:var(--line)}"
    "rect{fill:var(--paper)}.monitor{stroke:var(--ink);stroke-width:2}.unknown{stroke-dasharray:6 4}"
    ".mode{fill:var(--accent)}.configured{fill:var(--mark);stroke:var(--ink)}"
    ".monitors{display:grid;grid-template-columns:repeat(auto-fill,minmax(8rem,1fr));gap:1rem;padding:0;"
    "list-style:none}.monitors .picture{max-width:9.5rem}"
    // A monitor's problems, and what people look for.
    ".problem{border-left:4px solid var(--alarm);padding-left:.6rem;color:var(--alarm)}"
    ".top{display:flex;flex-wrap:wrap;gap:.5rem 1.6rem;margin:.6rem 0;padding:0;list-style:none}"
    ".cards h3,.cards h4{font-size:1.35rem}.top span{display:block;font-size:.85rem}.top "
    "b{font-size:1.25rem;font-weight:600;overflow-wrap:anywhere}"
    // A monitor's modes: the plot, and the list with as many columns as fit.
    ".plot{display:flex;flex-wrap:wrap;align-items:flex-start;gap:.5rem 1rem}.plot .picture{flex:none;width:11.9rem}"
    ".modes{flex:1 1 12rem;columns:12rem;margin:0;padding:0;list-style:none;font-size:.9rem}"
    ".modes li{break-inside:avoid;padding-left:1rem;text-indent:-1rem}"
    ".panel:has(.many){grid-column:1/-1}"
    // Tables.
    ".wide{overflow-x:auto}table{border-collapse:collapse;width:100%;margin:.6rem 0;font-size:.9rem}"
    "caption{text-align:left;padding:.2rem 0;font-weight:600}"
    "th,td{text-align:left;vertical-align:top;padding:.25rem .6rem .25rem 0;border-bottom:1px solid var(--line)}"
    "th{font-weight:600}td{unicode-bidi:isolate;white-space:pre-wrap}"
    ".unit{font-weight:400;font-size:.85em;white-space:nowrap}"
    ".properties{min-width:0}.properties th{width:50%;overflow-wrap:anywhere}.panel th{width:32%}"
    "@media (max-width:30rem){table{font-size:.74rem}.wide th,.wide td{padding-right:.4rem}}"
    "ul{margin:.3rem 0;padding-left:1.2rem}.error,.warning{color:var(--alarm)}"
    // Folded parts: a sentence is printed instead of one that is not open.
    "summary{cursor:pointer}.paper{display:none}"
    "@media print{:root{font-size:11px}body{max-width:none;padding:0;line-height:1.2}h2{margin:.7rem 0 .3rem}"
    "th,td{padding-top:.1rem;padding-bottom:.1rem}.row{gap:.7rem;margin:.7rem 0}.wide{overflow:visible}"
    ".panel,tr,li,.picture{break-inside:avoid}.cards "
    ".panel{break-inside:auto}h1,h2,h3,h4,caption,thead{break-after:avoid}"
    "details:not([open]){display:none}details:not([open])+.paper{display:block}}";
