// Finds what searchIndex has: sections of the guide first, then classes, headers and their members.
(function () {
  "use strict";
  var input = document.querySelector('input[name="q"]');
  var state = document.getElementById("state");
  var results = document.getElementById("results");
  var most = 40; // of the guide, and of the reference

  // Without "a", "an", "to" and the like, unless there is nothing else.
  function words(text) {
    var all = text.toLowerCase().split(/\s+/).filter(Boolean);
    var long = all.filter(function (word) { return word.length > 2; });
    return long.length > 0 ? long : all;
  }

  // 0 unless every word is in the entry; the more, the nearer the words are to its title.
  function score(entry, wanted) {
    var title = entry[0].toLowerCase();
    var rest = (entry[1] + " " + entry[3]).toLowerCase();
    var sum = 0;
    for (var i = 0; i < wanted.length; i++) {
      if (title === wanted[i]) sum += 100;
      else if (title.indexOf(wanted[i]) === 0) sum += 40;
      else if (title.indexOf(wanted[i]) > 0) sum += 20;
      else if (rest.indexOf(wanted[i]) >= 0) sum += 2;
      else return 0;
    }
    return sum + (title === wanted.join(" ") ? 100 : 0);
  }

  // The words of a text around the first one that is wanted, with those marked.
  function excerpt(text, wanted) {
    var at = text.toLowerCase().indexOf(wanted[0]);
    var from = Math.max(0, at - 60);
    var piece = (from > 0 ? "… " : "") + text.slice(from, from + 180) + (from + 180 < text.length ? " …" : "");
    var paragraph = document.createElement("p");
    while (piece !== "") {
      var low = piece.toLowerCase();
      var next = -1;
      var length = 0;
      wanted.forEach(function (word) {
        var found = low.indexOf(word);
        if (found >= 0 && (next < 0 || found < next)) {
          next = found;
          length = word.length;
        }
      });
      if (next < 0) break;
      paragraph.append(piece.slice(0, next));
      var mark = document.createElement("mark");
      mark.textContent = piece.slice(next, next + length);
      paragraph.append(mark);
      piece = piece.slice(next + length);
    }
    paragraph.append(piece);
    return paragraph;
  }

  function list(title, found, wanted) {
    if (found.length === 0) return;
    var heading = document.createElement("h2");
    heading.textContent = title + ": " + found.length + (found.length > most ? ", the first " + most : "");
    var ol = document.createElement("ol");
    found.slice(0, most).forEach(function (hit) {
      var li = document.createElement("li");
      var a = document.createElement("a");
      a.href = hit.entry[2];
      a.textContent = hit.entry[0];
      var context = document.createElement("span");
      context.className = "context";
      context.textContent = hit.entry[1];
      li.append(a, context);
      if (hit.entry[3]) li.append(excerpt(hit.entry[3], wanted));
      ol.append(li);
    });
    results.append(heading, ol);
  }

  function show() {
    var wanted = words(input.value);
    results.textContent = "";
    if (wanted.length === 0) {
      state.textContent = "Type above what you look for.";
      return;
    }
    var hits = [];
    searchIndex.forEach(function (entry) {
      var points = score(entry, wanted);
      if (points > 0) hits.push({ entry: entry, points: points });
    });
    hits.sort(function (a, b) {
      return b.points - a.points || a.entry[0].length - b.entry[0].length;
    });
    state.textContent = hits.length === 0 ? "Nothing has all of these words." : hits.length + " found.";
    var isGuide = function (hit) { return hit.entry[1].indexOf("Reference") !== 0; };
    list("Guide", hits.filter(isGuide), wanted);
    list("Reference", hits.filter(function (hit) { return !isGuide(hit); }), wanted);
  }

  input.value = new URLSearchParams(location.search).get("q") || "";
  input.addEventListener("input", show);
  input.form.addEventListener("submit", function (event) {
    event.preventDefault();
    history.replaceState(null, "", "?q=" + encodeURIComponent(input.value));
    show();
  });
  show();
  input.focus();
})();
