#pragma once

#include <string_view>

namespace ostrevan::summary {

/// Of the page. Light or dark as the reader's system says; one column on a phone.
inline constexpr std::string_view page_style = R"(
:root { color-scheme: light dark; --back: #f6f4f0; --card: #fffefb; --text: #22252b; --soft: #6d717a; --line: #e4e0d8;
  --full: #d2552d; --light: #f0bda4; --track: #f0ede6; }
@media (prefers-color-scheme: dark) { :root { --back: #121418; --card: #1b1e24; --text: #eceae6; --soft: #9a9fa9;
  --line: #2c3038; --full: #f0804f; --light: #7a4a35; --track: #262a31; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--back); color: var(--text); font: 16px/1.45 system-ui, "Segoe UI", Roboto, sans-serif; }
main { max-width: 68rem; margin: 0 auto; padding: 2.5rem 1.25rem 3rem; }
h1 { margin: 0; font-size: clamp(1.9rem, 6vw, 3rem); letter-spacing: -.02em; line-height: 1.1; }
h2 { margin: 0 0 .9rem; font-size: 1rem; font-weight: 650; }
p { margin: .3rem 0; }
.soft { color: var(--soft); }
.small { font-size: .85rem; }
.tiles { display: grid; grid-template-columns: repeat(auto-fit, minmax(8.5rem, 1fr)); gap: 1rem; margin: 1.75rem 0 1rem; }
.tile, section { background: var(--card); border: 1px solid var(--line); border-radius: 14px; padding: 1.1rem 1.25rem; }
.tile b { display: block; font-size: 1.9rem; line-height: 1.15; letter-spacing: -.02em; font-variant-numeric: tabular-nums; }
.cards { display: grid; grid-template-columns: repeat(6, 1fr); gap: 1rem; margin-top: 1rem; }
section { grid-column: span 3; min-width: 0; }
section.wide { grid-column: span 6; }
section.third { grid-column: span 2; }
section.third .name { white-space: normal; }
svg { display: block; width: 100%; overflow: visible; }
.columns { height: 9rem; border-bottom: 1px solid var(--line); }
.bar { height: .5rem; border-radius: 4px; overflow: hidden; }
.full { fill: var(--full); }
.light { fill: var(--light); }
.track { fill: var(--track); }
.labels { display: grid; margin-top: .35rem; color: var(--soft); font-size: .72rem; }
.labels span { white-space: nowrap; min-width: 0; text-align: center; }
.labels.loose span { text-align: left; }
ol, ul { list-style: none; margin: 0; padding: 0; }
li { padding: .4rem 0; }
.row { display: flex; gap: .75rem; align-items: baseline; margin-bottom: .3rem; }
.name { flex: 1; min-width: 0; overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.number { font-variant-numeric: tabular-nums; color: var(--soft); }
.stars { color: var(--full); letter-spacing: .05em; }
.key { display: inline-block; width: .8em; height: .8em; border-radius: 3px; background: var(--light); margin-right: .35em; }
footer { margin-top: 2rem; }
@media (max-width: 44rem) { main { padding: 1.75rem .9rem 2rem; } section, section.third { grid-column: span 6; }
  .tiles { grid-template-columns: 1fr 1fr; gap: .7rem; } .cards { gap: .7rem; } .columns { height: 7rem; } }
)";

}  // namespace ostrevan::summary
