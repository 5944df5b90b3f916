[playlist]
File1=Rock/One Song.mp3
Title1=Artist - One Song
Length1=201

File2=http://radio.example:8000/live
Title2=Radio
Length2=-1
File10=C:\Music\Ten.mp3
NumberOfEntries=3
Version=2
