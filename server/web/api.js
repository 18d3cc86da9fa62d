// Turns every <cmd> element of the page into a documented, runnable command entry and runs
// commands in the full-screen console. Plain DOM code: the page must work offline.
(function () {
  "use strict";
  var body = document.body;
  var port = body.dataset.port;
  var words = {
    args: body.dataset.wordArguments, returns: body.dataset.wordReturns,
    usage: body.dataset.wordUsage, or: body.dataset.wordOr
  };
  var address = "http://127.0.0.1:" + port + "/";
  var output = document.getElementById("console-output");
  var consoleBox = document.getElementById("console");

  function element(tag, text, className) {
    var node = document.createElement(tag);
    if (text !== undefined) node.textContent = text;
    if (className) node.className = className;
    return node;
  }

  function descriptionList(title, joined) {
    var box = element("div");
    if (!joined) return box;
    box.appendChild(element("h3", title));
    var list = element("dl");
    joined.split("|").forEach(function (item) {
      var colon = item.indexOf(":");
      list.appendChild(element("dt", colon < 0 ? item : item.slice(0, colon)));
      list.appendChild(element("dd", colon < 0 ? "" : item.slice(colon + 1).trim()));
    });
    box.appendChild(list);
    return box;
  }

  function showConsole(text, isError) {
    consoleBox.classList.remove("hidden");
    var line = element("div", text, isError ? "error" : undefined);
    output.appendChild(line);
    output.scrollTop = output.scrollHeight;
  }

  function run(request) {
    var url = address + request;
    fetch(url).then(function (reply) { return reply.json(); })
      .then(function (json) { showConsole("> " + request + "\n" + JSON.stringify(json, null, 2)); })
      .catch(function () { showConsole("Cannot connect to '" + url + "'", true); });
  }

  function usage(name) {
    var box = element("p");
    box.appendChild(element("strong", words.usage + ": "));
    var link = element("a", address + name);
    link.href = address + name + "?pretty=1";
    box.appendChild(link);
    box.appendChild(document.createTextNode(" " + words.or + " "));
    box.appendChild(element("code", JSON.stringify({ command: name })));
    return box;
  }

  function buildCommand(cmd, index, names) {
    var name = cmd.textContent.trim();
    var section = element("section", undefined, "command");
    section.id = name.toLowerCase();
    var heading = element("h2");
    var anchor = element("a", name);
    anchor.href = "#" + section.id;
    heading.appendChild(anchor);
    var example = window.apiExamples && window.apiExamples[name.toLowerCase()];
    var examplePre = element("pre", "", "example");
    examplePre.hidden = true;
    if (example) {
      var exampleButton = element("button", "Example output");
      exampleButton.type = "button";
      exampleButton.addEventListener("click", function () {
        examplePre.textContent = JSON.stringify(example, null, 2);
        examplePre.hidden = !examplePre.hidden;
      });
      heading.appendChild(exampleButton);
    }
    var runButton = element("button", "Run", "run");
    runButton.type = "button";
    runButton.addEventListener("click", function () { run(name); });
    heading.appendChild(runButton);
    section.appendChild(heading);
    section.appendChild(element("p", cmd.getAttribute("desc") || ""));
    section.appendChild(descriptionList(words.args, cmd.getAttribute("arg")));
    section.appendChild(descriptionList(words.returns, cmd.getAttribute("returns")));
    section.appendChild(usage(name));
    section.appendChild(examplePre);
    cmd.replaceWith(section);

    var indexLink = element("a", name);
    indexLink.href = "#" + section.id;
    index.appendChild(indexLink);
    var option = element("option");
    option.value = name;
    names.appendChild(option);
  }

  var index = document.getElementById("command-index");
  var names = document.getElementById("cmd-names-list");
  Array.prototype.slice.call(document.getElementsByTagName("cmd")).forEach(function (cmd) {
    buildCommand(cmd, index, names);
  });

  // A link to the page ending in "#run=<command>" runs that command as its Run button does, so
  // a reply can be shared or bookmarked as a link.
  function commandOfHash() {
    var match = /^#run=([^&]*)/.exec(window.location.hash);
    if (!match) return null;
    try {
      return decodeURIComponent(match[1]).trim();
    } catch (error) {
      return match[1];
    }
  }

  function runFromHash() {
    var name = commandOfHash();
    if (name === null) return;
    var section = document.getElementById(name.toLowerCase());
    var button = section && section.classList.contains("command") && section.querySelector("button.run");
    if (button) button.click();
    else showConsole("Unknown command '" + name + "'", true);
  }

  runFromHash();
  window.addEventListener("hashchange", runFromHash);

  document.getElementById("open-console").addEventListener("click", function () {
    consoleBox.classList.remove("hidden");
    document.getElementById("console-input").focus();
  });
  document.getElementById("close-console").addEventListener("click", function () {
    consoleBox.classList.add("hidden");
  });
  document.getElementById("console-form").addEventListener("submit", function (event) {
    event.preventDefault();
    var input = document.getElementById("console-input");
    if (input.value.trim()) run(input.value.trim());
  });
})();
