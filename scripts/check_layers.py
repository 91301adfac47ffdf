#!/usr/bin/env python3
"""Holds every include of src/ to the DEPENDS of its module's add_module() (with what those stand on)."""
import os
import re
import sys

raiz = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "src")
modulos = {}
for nombre in sorted(os.listdir(raiz)):
    lista = os.path.join(raiz, nombre, "CMakeLists.txt")
    if not os.path.isfile(lista):
        continue
    texto = re.sub(r"#.*", "", open(lista, encoding="utf-8").read())
    for m in re.finditer(r"add_module\(([^)]*)\)", texto):
        palabras = m.group(1).split()
        directos, en_depends = [], False
        for p in palabras[1:]:
            if p in ("SOURCES", "DEPENDS", "LIBS"):
                en_depends = p == "DEPENDS"
            elif en_depends:
                directos.append(p)
        modulos[palabras[0]] = directos


def alcanza(modulo, visto=None):
    visto = set() if visto is None else visto
    for d in modulos.get(modulo, []):
        if d not in visto:
            visto.add(d)
            alcanza(d, visto)
    return visto


malos = []
for modulo in modulos:
    permitidos = alcanza(modulo) | {modulo}
    if modulo in alcanza(modulo):
        malos.append(f"{modulo}: depends on itself")
    for carpeta, _, archivos in os.walk(os.path.join(raiz, modulo)):
        for archivo in archivos:
            if not archivo.endswith((".h", ".cpp")):
                continue
            ruta = os.path.join(carpeta, archivo)
            for n, linea in enumerate(open(ruta, encoding="utf-8"), 1):
                donde = f"{os.path.relpath(ruta, raiz)}:{n}"
                inc = re.match(r'\s*#\s*include\s*"([a-z_]+)/([^"]+)"', linea)
                if inc:
                    otro, cabecera = inc.groups()
                    if otro not in permitidos:
                        malos.append(f"{donde}: {modulo} may not include {otro}/")
                    elif otro != modulo and cabecera.endswith("_internal.h"):
                        malos.append(f"{donde}: {otro}/{cabecera} is private to its module")
                elif re.match(r"\s*#\s*include\s*<Q[A-Z]", linea) and modulo != "gui":
                    malos.append(f"{donde}: Qt belongs to gui/ alone")
if not modulos:
    malos.append("no module found")
print("\n".join(malos) if malos else f"layers: {len(modulos)} modules hold to what they declare")
sys.exit(1 if malos else 0)
