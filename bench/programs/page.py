#!/usr/bin/python3
# Answers with a fixed page, using Python's CGI library.
import warnings

warnings.simplefilter("ignore", DeprecationWarning)
import cgi

form = cgi.FieldStorage()
print("Content-Type: text/html; charset=UTF-8\r\n\r")
print(r"""@PAGE@""")
