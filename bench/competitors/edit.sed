# The same edits for all three files, as a stream editor makes them.
s/DeviceId:[^"]*"/DeviceId:func_01\&amp;ven_10ec\&amp;dev_0285\&amp;subsys_17aa22c6\&amp;rev_1000"/
s/ModuleGuid:[^"]*"/ModuleGuid:{272b1e6e-1e98-4476-b3f0-1a4654be1089}"/
/Subeffects_DefaultMode" Key/s/ParamId:[^"]*"/ParamId:{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae}:5"/
/Subeffects_SpeechMode" Key/s/ParamId:[^"]*"/ParamId:{6696ec45-ca78-414a-8666-C9ed965acfee}:5"/
/<ParameterBlock Name="OrvexZan_Lfx_Mfx_Apo"/,/<\/ParameterBlock>/{
  s/^ *<ParameterBlock /<!--&/
  s/<\/ParameterBlock>/&-->/
}
/<!-- *<ParameterBlock Name="OrvexZan_Sfx_Apo"/,/<\/ParameterBlock>-->/{
  s/^<!--//
  s/-->//
}
/<ConfigurableDomain\r*$/{
  N
  /Name="OrvexZan_Efx_Apo"/s/^/<!--/
}
/Name="OrvexZan_Efx_Apo"/,/<\/ConfigurableDomain>/s/<\/ConfigurableDomain>/&-->/
/<!--.*<ConfigurableDomain Name="OrvexZan_SPATIALF"/,/<\/ConfigurableDomain>-->/{
  s/^<!--//
  s/-->//
}
