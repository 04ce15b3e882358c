#include "alerts/status_snapshot.h"

namespace zrn {

// One self-contained page: no external script, font or style, so it works on a closed network.
// It reads the token from its own address (?token=) to send it on with each refresh, since a
// browser cannot set an Authorization header on a page it navigates to.
QByteArray StatusPageHtml() {
  static const char kPage[] = R"HTML(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>ZRN Pennaro status</title>
<style>
  :root { color-scheme: dark; }
  body { margin: 0; background: #15181c; color: #e8eaed; font: 15px/1.35 "DejaVu Sans", Arial, sans-serif; }
  header { display: flex; align-items: center; gap: 18px; padding: 10px 16px; background: #23272e; border-bottom: 2px solid #0b0d10; }
  header h1 { font-size: 18px; margin: 0; font-weight: 600; letter-spacing: .5px; }
  #link { padding: 3px 10px; border-radius: 4px; font-weight: 600; }
  #link.up { background: #1d5b2a; } #link.down { background: #7a1d1d; }
  #statusBar { flex: 1; color: #b8bec6; white-space: nowrap; overflow: hidden; text-overflow: ellipsis; }
  #alarmBox { display: flex; align-items: center; gap: 8px; font-weight: 600; }
  main { padding: 14px 16px; }
  #grid { display: grid; grid-template-columns: repeat(auto-fill, minmax(150px, 1fr)); gap: 10px; }
  .panel { background: #22262c; border: 1px solid #343a42; border-radius: 6px; padding: 8px 10px; min-height: 72px; }
  .panel.alarm { border-color: #ff0000; box-shadow: 0 0 0 1px #ff0000 inset; }
  .top { display: flex; align-items: center; justify-content: space-between; }
  .pos { font-size: 20px; font-weight: 700; }
  .lamp { width: 34px; height: 22px; border-radius: 11px; border: 1px solid #000; }
  .lamp.green { background: #00ff00; } .lamp.red { background: #ff0000; }
  .lamp.yellow { background: #ffff00; } .lamp.cyan { background: #00ffff; }
  .lamp.grey { background: #e0e0e0; opacity: .35; }
  body.stale .lamp { background: repeating-linear-gradient(45deg, #3a3f46 0 4px, #555b63 4px 8px) !important; opacity: 1; }
  .line { font-size: 13px; color: #c9ced5; white-space: nowrap; overflow: hidden; text-overflow: ellipsis; }
  .show { min-height: 110px; }
  h2 { font-size: 14px; color: #9aa2ac; margin: 18px 0 6px; font-weight: 600; text-transform: uppercase; letter-spacing: 1px; }
  #messages { font: 13px/1.4 "DejaVu Sans Mono", monospace; color: #c9ced5; background: #101215; border: 1px solid #343a42; padding: 6px 10px; margin: 0; max-height: 30vh; overflow: auto; }
  #problem { display: none; background: #7a1d1d; padding: 6px 16px; font-weight: 600; }
</style>
</head>
<body>
<header>
  <h1>ZRN Pennaro</h1>
  <span id="link" class="down">No link</span>
  <span id="statusBar"></span>
  <span id="alarmBox">Alarm <span id="alarmLamp" class="lamp grey"></span></span>
</header>
<div id="problem"></div>
<main>
  <div id="grid"></div>
  <h2>Messages</h2>
  <pre id="messages"></pre>
</main>
<script>
"use strict";
const token = new URLSearchParams(location.search).get("token");
function el(tag, cls, text) {
  const e = document.createElement(tag);
  if (cls) e.className = cls;
  if (text !== undefined) e.textContent = text;
  return e;
}
function outputPanel(o) {
  const p = el("div", "panel" + (o.inAlarm ? " alarm" : ""));
  p.id = "output-" + o.panel;
  p.title = o.toolTip;
  const top = el("div", "top");
  top.append(el("span", "pos", o.panel), el("span", "lamp " + o.lamp));
  p.append(top, el("div", "line", o.name), el("div", "line", o.channelLine || ("Ch. " + o.output)));
  return p;
}
function showPanel(s, i) {
  const p = el("div", "panel show" + (s.inAlarm ? " alarm" : ""));
  p.id = "show-" + (i + 1);
  const top = el("div", "top");
  top.append(el("span", "pos", s.name), el("span", "lamp " + s.indicator));
  p.append(top, el("div", "line", s.outputs), el("div", "line", s.source));
  return p;
}
function render(st) {
  document.getElementById("problem").style.display = "none";
  document.body.classList.toggle("stale", !(st.link.up && st.link.exchangeComplete));
  const link = document.getElementById("link");
  link.className = st.link.up ? "up" : "down";
  link.textContent = st.link.up ? "Linked " + st.link.address + ":" + st.link.port
                                : "No link " + st.link.address + ":" + st.link.port;
  document.getElementById("statusBar").textContent = st.statusBar;
  document.getElementById("alarmLamp").className = "lamp " + st.alarmLamp;
  const grid = document.getElementById("grid");
  const panels = st.mode === "shows" ? st.shows.map(showPanel) : st.outputs.map(outputPanel);
  grid.replaceChildren(...panels);
  document.getElementById("messages").textContent = st.messages.slice().reverse().join("\n");
  const alarms = st.outputs.filter(o => o.inAlarm).length + st.shows.filter(s => s.inAlarm).length;
  document.title = (alarms > 0 ? "ALARM - " : "") + "ZRN Pennaro status";
}
async function refresh() {
  try {
    const headers = token ? { "Authorization": "Bearer " + token } : {};
    const reply = await fetch("api/status", { headers, cache: "no-store" });
    if (!reply.ok) throw new Error("HTTP " + reply.status);
    render(await reply.json());
  } catch (e) {
    const problem = document.getElementById("problem");
    problem.textContent = "Monitor not answering (" + e.message + ")";
    problem.style.display = "block";
    document.body.classList.add("stale");
  }
}
refresh();
setInterval(refresh, 1000);
</script>
</body>
</html>
)HTML";
  return QByteArray(kPage, sizeof(kPage) - 1);
}

}  // namespace zrn
