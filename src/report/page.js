"use strict";
// The page of a network and a path on it. report/page.h tells the data. Names reach the document as
// textContent and title alone, so they are never markup.

document.addEventListener("DOMContentLoaded", () => {
    const data = JSON.parse(document.getElementById("data").textContent);
    const part = (id) => document.getElementById(id);
    const pieces = (list, size, from = 0) => {
        const all = [];
        for (let i = from; i < list.length; i += size) all.push(list.slice(i, i + size));
        return all;
    };

    // ---- The network ----------------------------------------------------------------------------

    const automatonName = (a) => data.automata[a - 1].name;
    const locationName = (a, l) => data.automata[a - 1].locations[l];
    const place = (a, l) => automatonName(a) + ": " + locationName(a, l);
    const actionName = (x) => x in data.actionNames ? x + " " + data.actionNames[x] : String(x);
    const actions = new Map(data.actions.map((action) => [action[0], action]));

    // A state is a function from automata to locations.

    function targets(moves, source) {
        const found = [];
        for (let i = 1; i < moves.length; i += 2) if (moves[i] === source) found.push(moves[i + 1]);
        return found;
    }

    function isPossible(action, state) {
        for (let i = 1; i < action.length; ++i) {
            if (targets(action[i], state(action[i][0])).length === 0) return false;
        }
        return true;
    }

    // What the atoms of the condition say, each once.
    const parts = new Map();
    for (const token of data.condition) {
        const atoms = token[0] === "sum" ? pieces(token, 2, 2).map(([, atom]) => atom) : [token];
        for (const atom of atoms) {
            if (Array.isArray(atom) || atom === "deadlock") parts.set(String(atom), atom);
        }
    }

    function partText(token) {
        if (token === "deadlock") return "no action is possible";
        if (token[0] === "prop") return data.props[token[1]][0];
        if (token[0] === "at") return place(token[1], token[2]);
        return actionName(token[1]) + " is possible";
    }

    function partHolds(token, state) {
        if (token === "deadlock") return !data.actions.some((action) => isPossible(action, state));
        if (token[0] === "at") return state(token[1]) === token[2];
        if (token[0] === "enabled") {
            return actions.has(token[1]) && isPossible(actions.get(token[1]), state);
        }
        return pieces(data.props[token[1]], 2, 1).some(([a, l]) => state(a) === l);
    }

    function questionHolds(state) {
        const values = [];
        const known = new Map();
        function holds(atom) {
            const key = String(atom);
            if (!known.has(key)) known.set(key, partHolds(atom, state));
            return known.get(key);
        }
        for (const token of data.condition) {
            if (token === "!") {
                values.push(!values.pop());
            } else if (token === "&" || token === "|") {
                const [left, right] = values.splice(-2);
                values.push(token === "&" ? left && right : left || right);
            } else if (token === "true" || token === "false") {
                values.push(token === "true");
            } else if (token[0] === "sum") {
                const weights = pieces(token, 2, 2).map(([w, atom]) => (holds(atom) ? w : 0));
                values.push(weights.reduce((a, b) => a + b, 0) >= token[1]);
            } else {
                values.push(holds(token));
            }
        }
        return values.pop();
    }

    // The locations that the parts speak of, "automaton,location".
    const askedPlaces = new Set();
    for (const token of parts.values()) {
        if (token[0] === "at") askedPlaces.add(token[1] + "," + token[2]);
        if (token[0] === "prop") {
            for (const pair of pieces(data.props[token[1]], 2, 1)) askedPlaces.add(String(pair));
        }
    }

    // ---- The steps ------------------------------------------------------------------------------

    const steps = [];        // {actions, changes: [[automaton, source, target], ...], byHand, holds}
    const moved = new Map(); // automaton -> [{position, location}, ...], ascending
    const undone = [];       // what each step by hand has replaced: {position, steps}
    let position = 0;

    function append(step) {
        steps.push(step);
        for (const [a, , location] of step.changes) {
            if (!moved.has(a)) moved.set(a, []);
            moved.get(a).push({position: steps.length, location});
        }
    }

    // Takes off all steps after a position.
    function cut(from) {
        const off = steps.splice(from);
        for (const step of off) {
            for (const [a] of step.changes) {
                const all = moved.get(a);
                while (all.length > 0 && all.at(-1).position > from) all.pop();
            }
        }
        return off;
    }

    const stateAt = (at) => (a) => {
        const all = moved.get(a) ?? [];
        let low = 0;
        for (let high = all.length; low < high;) {
            const middle = (low + high) >> 1;
            if (all[middle].position <= at) low = middle + 1; else high = middle;
        }
        return low === 0 ? 0 : all[low - 1].location;
    };

    const holdsAt = (at) => at === 0 ? heldAtStart : steps[at - 1].holds;
    const holding = new Set(data.holds);
    const heldAtStart = holding.has(0);
    data.steps.forEach((step, i) => append({
        actions: step[0], changes: pieces(step, 3, 1), byHand: false, holds: holding.has(i + 1),
    }));
    const loop = data.loop ?? null;
    const isThePath = () => undone.length === 0;

    function take(action, chosen) {
        const state = stateAt(position);
        const changes = chosen.map(([a, target]) => [a, state(a), target])
            .filter(([, source, target]) => source !== target);
        undone.push({position, steps: cut(position)});
        append({actions: [action], changes, byHand: true, holds: false});
        part("filter").value = ""; // what is typed next is about the next action
        steps.at(-1).holds = data.question !== "" && questionHolds(stateAt(steps.length));
        columns = chosenColumns();
        go(steps.length);
    }

    function undo() {
        if (undone.length === 0) return;
        const last = undone.pop();
        cut(last.position);
        last.steps.forEach(append);
        columns = chosenColumns();
        go(last.position);
    }

    function save() {
        const walk = steps.map((step) => JSON.stringify({
            action: step.actions[0], name: data.actionNames[step.actions[0]], changes: step.changes,
        }));
        const text = '{"network":' + JSON.stringify(data.network) + ',\n"walk":[\n' +
            walk.join(",\n") + "]}\n";
        const link = document.createElement("a");
        link.href = URL.createObjectURL(new Blob([text], {type: "application/json"}));
        link.download = "walk.json";
        link.click();
        setTimeout(() => URL.revokeObjectURL(link.href), 10000);
    }

    // ---- What is drawn --------------------------------------------------------------------------

    function box(className, text, role) {
        const made = document.createElement("div");
        made.className = className;
        if (role) made.setAttribute("role", role);
        if (text !== undefined) made.textContent = made.title = text;
        return made;
    }

    // The automata of the columns: those shown at first and those moved by hand since then.
    function chosenColumns() {
        const wanted = part("find").value.toLowerCase();
        let all = data.shown;
        if (part("all").checked) {
            all = data.automata.map((_, i) => i + 1);
        } else if (!isThePath()) {
            const byHand = steps.filter((step) => step.byHand).flatMap((step) => step.changes);
            all = [...new Set([...all, ...byHand.map(([a]) => a)])].sort((a, b) => a - b);
        }
        return all.filter((a) => automatonName(a).toLowerCase().includes(wanted));
    }
    let columns = [];

    const lineHeight = 28;
    const rowHeight = 26;
    const width = (names, least, most) => Math.min(
        most, Math.max(least, 40 + 7.2 * names.reduce((n, name) => Math.max(n, name.length), 0)));
    const marked = [...parts.values()].slice(0, 26); // those that have a letter
    const letter = (i) => String.fromCharCode(65 + i);
    const fixed = {number: 74, marks: data.question === "" ? 0 : 52 + 11 * Math.min(marked.length, 6)};
    fixed.action = width(data.actions.slice(0, 5000).map((action) => actionName(action[0])), 90, 300);
    fixed.all = fixed.number + fixed.marks + fixed.action;
    let cellWidth = 0;

    function put(line, className, text, left, size, role = "gridcell") {
        const made = box(className, text, role);
        made.style.left = left + "px";
        made.style.width = size + "px";
        line.append(made);
        return made;
    }

    function line(number, marks, action, className, role) {
        const made = box("line " + className, undefined, "row");
        const left = box("fixed");
        left.setAttribute("role", "presentation");
        left.style.width = fixed.all + "px";
        put(left, "number", number, 0, fixed.number, role);
        if (fixed.marks > 0) put(left, "marks", marks, fixed.number, fixed.marks, role);
        put(left, "action", action, fixed.number + fixed.marks, fixed.action, role);
        made.append(left);
        return made;
    }

    function drawLine(p, first, last) {
        const step = steps[p - 1];
        const state = stateAt(p);
        const met = marked.map((token, i) => partHolds(token, state) ? letter(i) : "").join("");
        const made = line(
            (p === position ? "▶ " : "") + (step?.byHand ? "✎ " : "") + p,
            (holdsAt(p) ? "★ " : "") + met,
            p === 0 ? "start" : step.actions.map(actionName).join(" or "),
            (p === position ? "here " : "") + (step?.byHand ? "by-hand" : ""));
        made.id = "line" + p;
        made.style.top = (p + 1) * lineHeight + "px";
        made.setAttribute("aria-rowindex", p + 2);
        made.setAttribute("aria-selected", p === position);
        made.dataset.position = p;
        const here = new Set(step?.changes.map(([a]) => a));
        for (let c = first; c < last; ++c) {
            const a = columns[c];
            const l = state(a);
            const cell = put(
                made, "cell" + (here.has(a) ? " changed" : "") +
                    (askedPlaces.has(a + "," + l) ? " asked" : ""),
                (here.has(a) ? "→ " : "") + locationName(a, l), fixed.all + c * cellWidth, cellWidth);
            cell.title = place(a, l);
            cell.setAttribute("aria-colindex", c + 4);
        }
        return made;
    }

    function drawLanes() {
        const lanes = part("lanes");
        const sheet = part("sheet");
        const end = isThePath() && (loop !== null || data.ends) ? 1 : 0;
        sheet.style.height = (steps.length + 2 + end) * lineHeight + "px";
        sheet.style.width = fixed.all + columns.length * cellWidth + "px";
        lanes.setAttribute("aria-rowcount", steps.length + 2);
        lanes.setAttribute("aria-colcount", columns.length + 3);
        const first = Math.max(0, Math.floor(lanes.scrollLeft / cellWidth));
        const last = Math.min(columns.length, first + Math.ceil(lanes.clientWidth / cellWidth) + 1);
        const titles = line("step", "met", "action", "titles", "columnheader");
        for (let c = first; c < last; ++c) {
            put(titles, "title", automatonName(columns[c]), fixed.all + c * cellWidth, cellWidth,
                "columnheader");
        }
        const all = [titles];
        const top = Math.max(0, Math.floor(lanes.scrollTop / lineHeight) - 1);
        const bottom = Math.min(steps.length, top + Math.ceil(lanes.clientHeight / lineHeight) + 1);
        for (let p = top; p <= bottom; ++p) all.push(drawLine(p, first, last));
        if (end === 1 && bottom === steps.length) {
            const text = loop !== null ? "↻ goes on at state " + loop : "ends here";
            const made = line("", "", text, "end-line");
            made.style.top = (steps.length + 2) * lineHeight + "px";
            made.dataset.position = loop ?? steps.length;
            all.push(made);
        }
        sheet.replaceChildren(...all);
        lanes.setAttribute("aria-activedescendant", "line" + position);
    }

    // A list of which only what is in sight is there.
    function list(id, draw) {
        const frame = part(id);
        const shown = {
            count: 0,
            draw() {
                const first = Math.floor(frame.scrollTop / rowHeight);
                const last = Math.min(
                    shown.count, first + Math.ceil(frame.clientHeight / rowHeight) + 1);
                const end = box("");
                end.setAttribute("role", "presentation");
                end.style.height = shown.count * rowHeight + "px";
                const all = [end];
                for (let i = first; i < last; ++i) {
                    const row = draw(i);
                    row.style.top = i * rowHeight + "px";
                    row.setAttribute("aria-posinset", i + 1);
                    row.setAttribute("aria-setsize", shown.count);
                    all.push(row);
                }
                frame.replaceChildren(...all);
            },
            show(i) {
                const top = i * rowHeight;
                if (top < frame.scrollTop) frame.scrollTop = top;
                if (top + rowHeight > frame.scrollTop + frame.clientHeight) {
                    frame.scrollTop = top + rowHeight - frame.clientHeight;
                }
            },
        };
        frame.addEventListener("scroll", () => requestAnimationFrame(shown.draw));
        return shown;
    }

    const stateList = list("state", (i) => {
        const a = columns[i];
        const now = stateAt(position)(a);
        const just = position > 0 && steps[position - 1].changes.some(([b]) => b === a);
        const row = box("row" + (just ? " changed" : "") + (now !== 0 ? " moved" : ""), undefined,
                        "listitem");
        row.append(box("", automatonName(a)), box("", locationName(a, 0)),
                   box("", (just ? "→ " : "") + locationName(a, now)));
        return row;
    });

    let possible = []; // of the state that is shown, those that the filter leaves
    let chosen = 0;    // in that list
    const actionList = list("actions", (i) => {
        const row = box("row", actionName(possible[i][0]), "option");
        row.id = "option" + i;
        row.dataset.index = i;
        row.setAttribute("aria-selected", i === chosen);
        return row;
    });

    function drawActions() {
        const state = stateAt(position);
        const wanted = part("filter").value.toLowerCase();
        const all = data.actions.filter((action) => isPossible(action, state));
        possible = all.filter((action) => actionName(action[0]).toLowerCase().includes(wanted));
        chosen = 0;
        part("possible").textContent = all.length === 0 ? "No action is possible" :
            "Possible actions: " + (possible.length < all.length ? possible.length + " of " : "") +
            all.length;
        part("actions").scrollTop = 0;
        actionList.count = possible.length;
        choose(0);
    }

    function choose(i) {
        chosen = Math.max(0, Math.min(possible.length - 1, i));
        actionList.show(chosen);
        actionList.draw();
        part("actions").setAttribute("aria-activedescendant", "option" + chosen);
    }

    // Takes an action, after a question where an automaton has several moves.
    function askAndTake(i) {
        if (i >= possible.length) return;
        const state = stateAt(position);
        const action = possible[i];
        const moves = action.slice(1).map((of) => [of[0], targets(of, state(of[0]))]);
        const open = moves.filter(([, to]) => to.length > 1);
        if (open.length === 0) return take(action[0], moves.map(([a, to]) => [a, to[0]]));
        part("chosen").textContent = actionName(action[0]) + ": which moves?";
        part("moves").replaceChildren(...open.map(([a, to]) => {
            const group = document.createElement("fieldset");
            const legend = document.createElement("legend");
            legend.textContent = place(a, state(a)) + " →";
            group.append(legend, ...to.map((target, n) => {
                const label = document.createElement("label");
                const button = document.createElement("input");
                button.type = "radio";
                button.name = "move" + a;
                button.value = target;
                button.checked = n === 0;
                label.append(button, " " + locationName(a, target));
                return label;
            }));
            return group;
        }));
        const dialog = part("choice");
        dialog.returnValue = "";
        dialog.onclose = () => {
            if (dialog.returnValue !== "take") return;
            const answers = new FormData(dialog.querySelector("form"));
            take(action[0], moves.map(([a, to]) => [a, Number(answers.get("move" + a) ?? to[0])]));
        };
        dialog.showModal();
        dialog.querySelector("input").focus();
    }

    function drawQuestion() {
        part("asked").hidden = data.question === "";
        if (part("asked").hidden) return;
        const state = stateAt(position);
        const count = steps.filter((step) => step.holds).length + (heldAtStart ? 1 : 0);
        part("question").textContent = data.question;
        part("met").textContent = (holdsAt(position) ? "★ met here" : "not met here") + "; ★ at " +
            count + " of " + (steps.length + 1) + " states";
        part("parts").replaceChildren(...marked.map((token, i) => {
            const item = document.createElement("li");
            const button = document.createElement("button");
            const met = partHolds(token, state);
            button.textContent = letter(i) + (met ? " ✓ " : " – ") + partText(token);
            button.className = met ? "met" : "";
            button.title = "To the next state where this is met";
            button.onclick = () => {
                for (let n = 1; n <= steps.length; ++n) {
                    const p = (position + n) % (steps.length + 1);
                    if (partHolds(token, stateAt(p))) return go(p);
                }
            };
            item.append(button);
            return item;
        }));
        if (parts.size > marked.length) {
            const item = document.createElement("li");
            item.textContent = "and " + (parts.size - marked.length) + " more";
            part("parts").append(item);
        }
    }

    function draw() {
        const names = columns.slice(0, 2000).flatMap(
            (a) => [automatonName(a), ...data.automata[a - 1].locations.slice(0, 50)]);
        cellWidth = width(names, 80, 200);
        drawLanes();
        drawQuestion();
        drawActions();
        stateList.count = columns.length;
        stateList.draw();
        part("automata").textContent = columns.length === data.automata.length
            ? "(" + columns.length + ")" : "(" + columns.length + " of " + data.automata.length + ")";
        part("position").textContent = "State " + position;
        part("length").textContent = "of " + steps.length;
        part("step").max = steps.length;
        part("step").value = position;
        const byHand = steps.filter((step) => step.byHand).length;
        part("summary").textContent = steps.length + (steps.length === 1 ? " step" : " steps") +
            (byHand > 0 ? ", ✎ " + byHand + " by hand" : "");
        part("first").disabled = part("previous").disabled = position === 0;
        part("last").disabled = part("next").disabled = position === steps.length;
        part("undo").disabled = undone.length === 0;
        part("save").disabled = part("play").disabled = steps.length === 0;
    }

    // ---- Where the page is ----------------------------------------------------------------------

    let addressDue = 0;

    function go(p) {
        position = Math.max(0, Math.min(steps.length, p));
        const lanes = part("lanes");
        const top = position * lineHeight; // below the titles
        if (top < lanes.scrollTop) lanes.scrollTop = top;
        const room = lanes.clientHeight - 3 * lineHeight;
        part("sheet").style.height = (steps.length + 3) * lineHeight + "px";
        if (top > lanes.scrollTop + room) lanes.scrollTop = top - room;
        draw();
        part("told").textContent = "state " + position + " of " + steps.length + (position === 0
            ? "" : ": " + steps[position - 1].actions.map(actionName).join(" or ")) +
            (data.question !== "" && holdsAt(position) ? ", the question is met" : "");
        // Browsers allow a few changes of the address in a second, and keys repeat faster.
        clearTimeout(addressDue);
        addressDue = setTimeout(() => history.replaceState(null, "", "#step=" + position), 100);
    }

    function goToAddress() {
        const found = /^#step=(\d+)$/.exec(location.hash);
        go(found ? Number(found[1]) : 0);
    }

    let playing = 0;

    function play(on) {
        clearInterval(playing);
        playing = on ? setInterval(() => {
            if (position < steps.length) return go(position + 1);
            if (isThePath() && loop !== null) return go(loop);
            play(false);
        }, 600) : 0;
        part("play").textContent = on ? "Pause" : "Play";
    }

    const startOrStop = () => {
        if (playing === 0 && position === steps.length && loop === null) go(0);
        play(playing === 0);
    };
    const page = () => Math.max(1, Math.floor(part("lanes").clientHeight / lineHeight) - 3);
    const keys = {
        ArrowDown: () => go(position + 1), ArrowRight: () => go(position + 1),
        ArrowUp: () => go(position - 1), ArrowLeft: () => go(position - 1),
        PageDown: () => go(position + page()), PageUp: () => go(position - page()),
        Home: () => go(0), End: () => go(steps.length),
        " ": startOrStop, u: undo, s: save, "/": () => part("filter").focus(),
    };

    document.addEventListener("keydown", (event) => {
        if (event.ctrlKey || event.altKey || event.metaKey || part("choice").open) return;
        if (event.target.matches("input, #actions, #state")) return;
        if (event.target.matches("button") && event.key === " ") return;
        if (event.shiftKey && event.key.startsWith("Arrow")) { // the columns out of sight
            const side = {ArrowLeft: -1, ArrowRight: 1}[event.key] ?? 0;
            part("lanes").scrollLeft += side * cellWidth;
        } else if (event.key in keys) {
            keys[event.key]();
        } else {
            return;
        }
        event.preventDefault();
    });

    // In the filter and in the list below it.
    function chooseByKey(event) {
        const to = {ArrowDown: chosen + 1, ArrowUp: chosen - 1}[event.key];
        if (to !== undefined) {
            choose(to);
        } else if (event.key === "Enter") {
            askAndTake(chosen);
        } else if (event.key === "Escape") {
            part("lanes").focus();
        } else {
            return;
        }
        event.preventDefault();
    }
    part("filter").onkeydown = part("actions").onkeydown = chooseByKey;
    part("filter").oninput = drawActions;
    part("actions").onclick = (event) => {
        const row = event.target.closest(".row");
        if (row) askAndTake(Number(row.dataset.index));
    };
    part("sheet").onclick = (event) => {
        const row = event.target.closest("[data-position]");
        if (row) go(Number(row.dataset.position));
    };
    part("find").oninput = part("all").onchange = () => {
        columns = chosenColumns();
        draw();
    };
    part("step").onchange = () => go(Math.floor(Number(part("step").value)));
    part("first").onclick = keys.Home;
    part("previous").onclick = keys.ArrowUp;
    part("next").onclick = keys.ArrowDown;
    part("last").onclick = keys.End;
    part("play").onclick = startOrStop;
    part("undo").onclick = undo;
    part("save").onclick = save;
    part("lanes").addEventListener("scroll", () => requestAnimationFrame(drawLanes));
    window.addEventListener("resize", draw);
    window.addEventListener("hashchange", goToAddress);

    document.title = part("network").textContent = data.network;
    part("all").checked = data.shown.length === data.automata.length;
    columns = chosenColumns();
    goToAddress();
    part("lanes").focus();
});
