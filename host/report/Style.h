#pragma once

namespace host::html {

constexpr char Style[] = R"css(
:root { color-scheme: light dark; --ink: #1d2430; --soft: #5b6472; --paper: #ffffff; --card: #f5f7fa; --line: #d4dae2;
  --good: #1a6b3c; --goodPaper: #e4f3ea; --warn: #7a5200; --warnPaper: #fdf1d6; --bad: #a11a24; --badPaper: #fbe6e7; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e4e8ee; --soft: #9aa5b4; --paper: #14181e; --card: #1d232b; --line: #39424e;
    --good: #7ed3a0; --goodPaper: #17301f; --warn: #f0c36a; --warnPaper: #352a10; --bad: #ff9aa0; --badPaper: #3d191c; }
}
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1.2rem; max-width: 72rem; color: var(--ink); background: var(--paper);
  font: 1rem/1.45 system-ui, "Segoe UI", sans-serif; }
h1 { font-size: 1.5rem; margin: 0; }
h2 { font-size: 1.2rem; margin: 2rem 0 .6rem; }
h3 { font-size: 1.05rem; margin: 0; overflow-wrap: anywhere; }
p { margin: .4rem 0; overflow-wrap: anywhere; }
code, pre { font: .85rem/1.4 ui-monospace, Consolas, monospace; }
code { overflow-wrap: anywhere; }
pre { overflow-x: auto; padding: .8rem; background: var(--card); border: 1px solid var(--line); border-radius: .4rem; }
a { color: inherit; }
.soft { color: var(--soft); }
.outcome { padding: .7rem .9rem; border-radius: .4rem; border-left: .3rem solid; }
.good { color: var(--good); background: var(--goodPaper); }
.warn { color: var(--warn); background: var(--warnPaper); }
.bad { color: var(--bad); background: var(--badPaper); }
article { margin: .8rem 0; padding: .9rem; border: 1px solid var(--line); border-radius: .5rem; background: var(--card);
  break-inside: avoid; }
.badge { display: inline-block; padding: 0 .5rem; border: 1px solid var(--line); border-radius: 1rem; font-size: .8rem; }
.chain { display: flex; flex-wrap: wrap; gap: .5rem 1.7rem; margin: .8rem 0; padding: 0 0 0 1.2rem; list-style: none; }
.chain li { position: relative; max-width: 100%; padding: .45rem .7rem; border: 1px solid var(--line);
  border-radius: .4rem; background: var(--paper); overflow-wrap: anywhere; }
.chain li + li::before { content: "\2192"; position: absolute; left: -1.4rem; color: var(--soft); }
.chain b { display: block; font-size: .75rem; font-weight: 600; color: var(--soft); }
.chain span { display: block; font-size: .8rem; }
.chain .good, .chain .bad, .chain .warn { border-color: currentColor; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .2rem .9rem; margin: .5rem 0 0; }
dt { color: var(--soft); }
dt { grid-column: 1; }
dd { grid-column: 2; margin: 0; overflow-wrap: anywhere; }
.diff .minus { color: var(--bad); background: var(--badPaper); }
.diff .plus { color: var(--good); background: var(--goodPaper); }
.diff .head { color: var(--soft); }
.failed { color: var(--bad); font-weight: 600; }
summary { cursor: pointer; }
@media (max-width: 40rem) {
  body { padding: .8rem; }
  dl { display: block; }
  .chain { display: block; padding: 0; }
  .chain li + li { margin-top: 1.5rem; }
  .chain li + li::before { content: "\2193"; left: 1rem; top: -1.45rem; }
}
@media print {
  body { max-width: none; padding: 0; font-size: 10pt; }
  pre { white-space: pre-wrap; overflow-wrap: anywhere; }
}
)css";

}  // namespace host::html
