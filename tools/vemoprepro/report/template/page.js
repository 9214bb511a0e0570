"use strict";
const stage = document.querySelector(".stage");
const sheet = document.querySelector(".sheet");
const edge = document.querySelector(".edge");
const cut = document.getElementById("cut");
const flip = document.querySelector("[data-flip]");
const zoomButtons = [...document.querySelectorAll("[data-zoom]")];
const width = Number(sheet.dataset.width), height = Number(sheet.dataset.height);

const kLevels = [0.25, 0.5, 1, 2, 4, 8, 16];
let zoom = null;                          // null: the whole page
let centre = {x: width / 2, y: height / 2};  // what the middle of the stage shows, in pixels of the page
let corner = {x: 0, y: 0};                // where the sheet's corner lies on the stage

const fitting = () => Math.min(stage.clientWidth / width, stage.clientHeight / height);
const scale = () => zoom === null ? fitting() : zoom;

// From the middle of the stage to the sheet's corner: no empty space where the sheet is larger than
// the stage, else the middle.
function cornerAlong(stageSide, side, middle) {
  if (side * scale() <= stageSide) return Math.round((stageSide - side * scale()) / 2);
  const place = Math.round(stageSide / 2 - middle * scale());
  return Math.min(0, Math.max(Math.ceil(stageSide - side * scale()), place));
}

function shownSpan() {
  const left = Math.max(0, corner.x);
  return {left, width: Math.min(stage.clientWidth, corner.x + width * scale()) - left};
}

function placeCut() {
  const span = shownSpan();
  const share = Number(cut.value) / 100;
  const at = span.left + span.width * share;
  // At the ends nothing of the other page is left, not even in corners that stick out.
  const beyond = share === 0 ? -1e5 : share === 1 ? 1e5 : 0;
  sheet.style.setProperty("--cut", (at - corner.x) / scale() + beyond + "px");
  edge.style.left = at + "px";
}

function loadFull() {
  for (const image of sheet.querySelectorAll("img[data-src]")) {
    image.src = image.dataset.src;
    image.removeAttribute("data-src");
  }
}

function show() {
  if (zoom !== null) loadFull();
  corner = {x: cornerAlong(stage.clientWidth, width, centre.x),
            y: cornerAlong(stage.clientHeight, height, centre.y)};
  sheet.style.transform = `translate(${corner.x}px, ${corner.y}px) scale(${scale()})`;
  sheet.classList.toggle("full", zoom !== null);
  sheet.classList.toggle("near", zoom !== null && zoom >= 1);
  stage.classList.toggle("zoomed", zoom !== null);
  for (const button of zoomButtons) {
    button.setAttribute("aria-pressed", String(zoom === null ? button.dataset.zoom === "fit"
                                                             : Number(button.dataset.zoom) === zoom));
  }
  placeCut();
}

// Keeps what lies at a place of the stage there.
function zoomTo(level, at = {x: stage.clientWidth / 2, y: stage.clientHeight / 2}) {
  const point = {x: (at.x - corner.x) / scale(), y: (at.y - corner.y) / scale()};
  zoom = level;
  centre = {x: point.x + (stage.clientWidth / 2 - at.x) / scale(),
            y: point.y + (stage.clientHeight / 2 - at.y) / scale()};
  show();
}

function moveBy(x, y) {
  centre = {x: (stage.clientWidth / 2 - corner.x - x) / scale(),
            y: (stage.clientHeight / 2 - corner.y - y) / scale()};
  show();
}

const nearer = at => zoomTo(kLevels.find(level => level > scale() * 1.01) || kLevels.at(-1), at);
function farther(at) {
  const level = kLevels.findLast(level => level < scale() * 0.99);
  zoomTo(level === undefined || level <= fitting() ? null : level, at);
}
function setCut(value) {
  cut.value = value;
  placeCut();
}
function flipPages() {
  const before = Number(cut.value) < 100;
  setCut(before ? 100 : 0);
  flip.setAttribute("aria-pressed", String(before));
}

const onStage = event => {
  const box = stage.getBoundingClientRect();
  return {x: event.clientX - box.left, y: event.clientY - box.top};
};
function followCut(event) {
  const span = shownSpan();
  setCut((onStage(event).x - span.left) / span.width * 100);
}
let drag = null;
stage.addEventListener("pointerdown", event => {
  if (event.button !== 0) return;
  stage.setPointerCapture(event.pointerId);
  const onEdge = event.target === edge;
  drag = {last: onStage(event), moved: 0, onEdge, cuts: onEdge || zoom === null};
});
stage.addEventListener("pointermove", event => {
  if (!drag || !stage.hasPointerCapture(event.pointerId)) return;
  const at = onStage(event);
  const x = at.x - drag.last.x, y = at.y - drag.last.y;
  drag.moved += Math.abs(x) + Math.abs(y);
  drag.last = at;
  if (drag.cuts) {
    if (drag.onEdge || drag.moved > 4) followCut(event);
  } else {
    moveBy(x, y);
  }
});
stage.addEventListener("pointerup", event => {
  if (drag && !drag.onEdge && drag.moved <= 4) {
    if (zoom !== null) zoomTo(null);
    else zoomTo(fitting() < 1 ? 1 : kLevels.find(level => level > fitting() * 1.5) || 16, onStage(event));
  }
  drag = null;
});
stage.addEventListener("pointercancel", () => { drag = null; });
stage.addEventListener("wheel", event => {
  if (!event.ctrlKey) return;
  event.preventDefault();
  if (event.deltaY < 0) nearer(onStage(event));
  else farther(onStage(event));
}, {passive: false});

const kStageKeys = {
  ArrowLeft: () => moveBy(80, 0), ArrowRight: () => moveBy(-80, 0),
  ArrowUp: () => moveBy(0, 80), ArrowDown: () => moveBy(0, -80)
};
stage.addEventListener("keydown", event => {
  if (zoom === null || !kStageKeys[event.key]) return;
  event.preventDefault();
  kStageKeys[event.key]();
});
const follow = relation => {
  const link = document.querySelector(`nav a[rel=${relation}]`);
  if (link) link.click();
};
const kKeys = {
  "+": () => nearer(), "=": () => nearer(), "-": () => farther(), "0": () => zoomTo(null),
  "f": flipPages, "n": () => follow("next"), "p": () => follow("prev")
};
document.addEventListener("keydown", event => {
  if (event.ctrlKey || event.altKey || event.metaKey || !kKeys[event.key]) return;
  event.preventDefault();
  kKeys[event.key]();
});

cut.addEventListener("input", placeCut);
flip.addEventListener("click", flipPages);
for (const button of zoomButtons) {
  button.addEventListener("click", () => zoomTo(button.dataset.zoom === "fit" ? null : Number(button.dataset.zoom)));
}
for (const box of document.querySelectorAll(".steps input")) {
  const marks = [...sheet.querySelectorAll(".marks img")]
    .filter(image => image.dataset.step === box.dataset.step);
  const showMarks = () => { for (const image of marks) image.hidden = !box.checked; };
  box.addEventListener("change", showMarks);
  showMarks();
}
for (const button of document.querySelectorAll(".spots")) {
  const spots = button.dataset.spots.split(" ").map(spot => spot.split(",").map(Number));
  let next = 0;
  button.addEventListener("click", () => {
    const [x, y] = spots[next];
    zoom = Math.max(2, zoom || 0);
    centre = {x, y};
    show();
    next = (next + 1) % spots.length;
    button.textContent = `Place ${next || spots.length} of ${spots.length}`;
  });
}
new ResizeObserver(show).observe(stage);
show();
