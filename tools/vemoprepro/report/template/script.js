"use strict";
const figures = document.getElementById("figures");
document.querySelector("main").prepend(figures);

for (const compare of document.querySelectorAll(".compare")) {
  const stage = compare.querySelector(".stage");
  const range = compare.querySelector("input");
  const show = () => stage.style.setProperty("--cut", range.value + "%");
  range.addEventListener("input", show);
  const follow = event => {
    const box = stage.getBoundingClientRect();
    range.value = (event.clientX - box.left) / box.width * 100;
    show();
  };
  stage.addEventListener("pointerdown", event => {
    if (event.button !== 0) return;
    stage.setPointerCapture(event.pointerId);
    follow(event);
  });
  stage.addEventListener("pointermove", event => {
    if (stage.hasPointerCapture(event.pointerId)) follow(event);
  });
  show();
}

for (const box of document.querySelectorAll(".steps input")) {
  const marks = [...box.closest("article").querySelectorAll("img.marks")]
    .filter(image => image.dataset.step === box.dataset.step);
  const show = () => { for (const image of marks) image.hidden = !box.checked; };
  box.addEventListener("change", show);
  show();
}

const heads = [...figures.querySelectorAll("th")];
const body = figures.querySelector("tbody");
const compareValues = (one, other) => {
  const difference = Number(one) - Number(other);
  return Number.isNaN(difference) ? one.localeCompare(other, undefined, {numeric: true})
                                  : difference;
};
heads.forEach((head, column) => head.querySelector("button").addEventListener("click", () => {
  const down = head.getAttribute("aria-sort") === "ascending";
  for (const other of heads) other.setAttribute("aria-sort", "none");
  head.setAttribute("aria-sort", down ? "descending" : "ascending");
  const value = row => row.cells[column] && row.cells[column].dataset.value;
  const rows = [...body.rows];
  const known = rows.filter(row => value(row) !== undefined);
  known.sort((a, b) => compareValues(value(a), value(b)) * (down ? -1 : 1));
  body.append(...known, ...rows.filter(row => value(row) === undefined));
}));
