"""Prints the lines of an exported file as Python's csv module reads them: readfields.py FILE ENCODING DELIMITER"""
import csv
import json
import sys

path, encoding, delimiter = sys.argv[1:]
with open(path, encoding=encoding, newline="") as file:
    for row in csv.reader(file, delimiter=delimiter, strict=True):
        print(json.dumps(row))
