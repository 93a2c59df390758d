// What is measured on the page as it is laid out. Each function returns a list of complaints, which is empty for a good page.
(() => {
  const luminance = ([r, g, b]) => {
    const part = c => (c /= 255) <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4;
    return 0.2126 * part(r) + 0.7152 * part(g) + 0.0722 * part(b);
  };
  // WCAG 2.2, contrast ratio
  const contrast = (a, b) => {
    const [low, high] = [luminance(a), luminance(b)].sort((x, y) => x - y);
    return (high + 0.05) / (low + 0.05);
  };
  const colours = text => [...text.matchAll(/rgba?\(([^)]*)\)/g)].map(m => m[1].split(",").map(Number));
  const opaque = colour => colour.length === 3 || colour[3] === 1;
  const middle = box => [box.x + box.width / 2, box.y + box.height / 2];
  const holds = (box, [x, y]) => box.left <= x && x <= box.right && box.top <= y && y <= box.bottom;

  // The colours that lie under a text: of the last shape drawn before it, or of the nearest element with a ground.
  const grounds = (element, point) => {
    for (let at = element; at; at = at.parentElement) {
      if (at.ownerSVGElement)
        for (let shape = at.previousElementSibling; shape; shape = shape.previousElementSibling) {
          const fill = colours(getComputedStyle(shape).fill);
          if (["rect", "circle", "path"].includes(shape.tagName) && fill.length && holds(shape.getBoundingClientRect(), point))
            return fill;
        }
      const style = getComputedStyle(at);
      if (style.backgroundImage !== "none") return colours(style.backgroundImage);
      const ground = colours(style.backgroundColor);
      if (ground.length && (ground[0].length === 3 || ground[0][3] > 0)) return ground;
    }
    return [[255, 255, 255]];
  };
  const texts = () => {
    const found = [];
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
      const range = document.createRange();
      range.selectNodeContents(walker.currentNode);
      const box = range.getBoundingClientRect();
      if (walker.currentNode.data.trim() && box.width && walker.currentNode.parentElement.tagName !== "title")
        found.push([walker.currentNode.parentElement, walker.currentNode.data, box]);
    }
    return found;
  };

  const faint = () => {
    const complaints = new Set();
    for (const [element, text, box] of texts()) {
      const style = getComputedStyle(element);
      const [ink] = colours(element.ownerSVGElement ? style.fill : style.color);
      for (const ground of grounds(element, middle(box)))
        if (!opaque(ink) || !opaque(ground) || contrast(ink, ground) < 4.5)
          complaints.add(`${element.tagName}.${element.className.baseVal ?? element.className} '${text.slice(0, 20)}': ` +
            `${ink} on ${ground}, ${contrast(ink, ground).toFixed(2)}`);
    }
    return [...complaints];
  };
  const wide = () => {
    const width = document.documentElement.clientWidth;
    const complaints = document.documentElement.scrollWidth > width ? [`the page is ${document.documentElement.scrollWidth} wide`] : [];
    const scrolls = element => element && getComputedStyle(element).overflowX === "auto";
    for (const element of document.body.querySelectorAll("*"))
      if (!element.parentElement.closest("svg") && !scrolls(element.parentElement.closest(".scroll")) && element.getBoundingClientRect().right > width + 0.5)
        complaints.push(`${element.tagName}.${element.className} ends at ${element.getBoundingClientRect().right}`);
    return complaints;
  };
  // Words of a drawing that leave it, or that another word of it covers.
  const crowded = () => {
    const complaints = new Set();
    for (const drawing of document.querySelectorAll("svg")) {
      const frame = drawing.getBoundingClientRect();
      const words = [...drawing.querySelectorAll("text")].map(text => [text.textContent, text.getBoundingClientRect()]);
      words.forEach(([word, box], i) => {
        if (box.left < frame.left || box.right > frame.right || box.top < frame.top || box.bottom > frame.bottom)
          complaints.add(`'${word}' leaves its drawing`);
        for (const [other, b] of words.slice(i + 1))
          if (Math.min(box.right, b.right) - Math.max(box.left, b.left) > 1 && Math.min(box.bottom, b.bottom) - Math.max(box.top, b.top) > 4)
            complaints.add(`'${word}' and '${other}' lie on each other`);
      });
    }
    return [...complaints];
  };
  const headings = () => {
    const levels = [...document.querySelectorAll("h1, h2, h3, h4, h5, h6")].map(heading => Number(heading.tagName[1]));
    const complaints = levels.filter(level => level === 1).length === 1 && levels[0] === 1 ? [] : ["not one h1 at the top"];
    levels.forEach((level, i) => { if (i && level > levels[i - 1] + 1) complaints.push(`h${level} under h${levels[i - 1]}`); });
    for (const table of document.querySelectorAll("table"))
      if (!table.querySelector("th[scope]") || !table.caption) complaints.push(`a table without heads: ${table.textContent.slice(0, 30)}`);
    return complaints;
  };
  const cells = () => [...document.querySelectorAll("td, th, li, h1, h2, h3, h4, p")].map(cell => cell.innerText);
  window.pageChecks = { faint, wide, crowded, headings, cells };
})();
