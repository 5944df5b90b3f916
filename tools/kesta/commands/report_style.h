// How the page of kesta report looks: light and dark as the reader's system is, on a telephone as on a wide screen.
#pragma once

namespace kesta {

inline constexpr const char* kReportStyle = R"css(
:root { color-scheme: light dark; --page: #f4f5f7; --card: #ffffff; --text: #1c2330; --quiet: #5b6475; --line: #d9dde4;
  --bar: #e6e9ef; --music: #3566c0; --images: #b0522c; --videos: #7a49b3; --documents: #2d7d5a; --good: #1f7a46;
  --bad: #b3261e; --wait: #8a5a00; }
@media (prefers-color-scheme: dark) { :root { --page: #14171d; --card: #1e232c; --text: #e6e9ef; --quiet: #a3adbd;
  --line: #343c49; --bar: #2c3440; --music: #7aa5f5; --images: #ec9a72; --videos: #bd94ee; --documents: #6cc49b;
  --good: #6fd39b; --bad: #ff8f86; --wait: #f0be5c; } }
* { box-sizing: border-box; }
body { margin: 0; padding: 1rem; background: var(--page); color: var(--text);
  font: 16px/1.5 system-ui, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif; }
main { max-width: 68rem; margin: 0 auto; }
h1 { font-size: 1.6rem; margin: .5rem 0 0; }
h2 { font-size: 1.3rem; margin: 0; overflow-wrap: anywhere; }
h3 { font-size: 1rem; margin: 1.75rem 0 .5rem; }
p { margin: .25rem 0; }
.quiet { color: var(--quiet); }
.card { background: var(--card); border: 1px solid var(--line); border-radius: .75rem; padding: 1.25rem; margin: 1rem 0; }
.stack { display: flex; height: 1.1rem; border-radius: .4rem; overflow: hidden; background: var(--bar); margin: .75rem 0 .5rem;
  gap: 2px; }
.legend { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; list-style: none; margin: 0; padding: 0; }
.legend i { display: inline-block; width: .75rem; height: .75rem; border-radius: .2rem; margin-right: .4rem; }
.music { background: var(--music); } .images { background: var(--images); }
.videos { background: var(--videos); } .documents { background: var(--documents); }
.row { border-top: 1px solid var(--line); padding: .5rem 0; }
.row .line { display: flex; flex-wrap: wrap; justify-content: space-between; gap: 0 1rem; }
.row .name { overflow-wrap: anywhere; min-width: 0; }
.meter { height: .5rem; border-radius: .25rem; background: var(--bar); margin-top: .35rem; }
.meter div { height: 100%; border-radius: .25rem; min-width: 2px; }
.good { color: var(--good); } .bad { color: var(--bad); } .wait { color: var(--wait); }
details { margin: .25rem 0 0; } summary { cursor: pointer; }
details ul { margin: .25rem 0; padding-left: 1.25rem; } li { overflow-wrap: anywhere; }
.pictures { display: grid; grid-template-columns: repeat(auto-fill, minmax(7rem, 1fr)); gap: .75rem; }
figure { margin: 0; } img { width: 100%; aspect-ratio: 1; object-fit: cover; border-radius: .5rem; display: block; background: var(--bar); }
figcaption { font-size: .8rem; color: var(--quiet); overflow-wrap: anywhere; }
@media (max-width: 32rem) { body { padding: .5rem; } .card { padding: .9rem; border-radius: .5rem; } }
@media print { body { background: none; } .card { break-inside: avoid; } }
)css";

}  // namespace kesta
