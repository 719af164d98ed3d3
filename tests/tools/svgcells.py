"""Reads an SVG of pdlib-run as XML and prints, as JSON, each panel's cell values (the titles of
its "cell" rectangles, in document order) and the number of AF-window outlines."""
import json
import sys
import xml.etree.ElementTree as ElementTree

SVG = "{http://www.w3.org/2000/svg}"

root = ElementTree.parse(sys.argv[1]).getroot()
panels = []
for panel in root.findall(SVG + "g"):
    cells = [rect.find(SVG + "title").text for rect in panel.iter(SVG + "rect") if rect.get("class") == "cell"]
    panels.append(cells)
outlines = sum(1 for rect in root.iter(SVG + "rect") if rect.get("class") == "af-window")
print(json.dumps({"panels": panels, "afWindows": outlines}))
