"use strict";

// --- Colours ---

{
  const choice = document.getElementById("theme");
  choice.value = document.documentElement.dataset.theme ?? "";
  choice.addEventListener("change", () => {
    document.documentElement.dataset.theme = choice.value;
    try {
      localStorage.setItem("zelk-theme", choice.value);
    } catch {
      // A browser that keeps nothing shows the choice until the page is left.
    }
  });
  choice.parentElement.hidden = false;
}
